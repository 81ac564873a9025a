#pragma once

#include <kesu/platform/UserDefaults.h>

#include <functional>
#include <map>
#include <set>
#include <span>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// User defaults in memory, with a "disk" that a test can read.
///
/// Only synchronize() writes values to the disk. A test simulates the death of the process, with the loss of what was
/// not synchronized, by loseUnsynchronized() or by a second fake made from the first one's keptOnDisk(). Any thread.
class FakeUserDefaults final : public UserDefaults {
 public:
  FakeUserDefaults() = default;

  /// Starts like a new process that finds `onDisk`.
  explicit FakeUserDefaults(const Dictionary& onDisk);

  std::optional<Value> get(std::string_view key) override;
  bool contains(std::string_view key) override;
  bool set(std::string_view key, Value value) override;
  void remove(std::string_view key) override;
  void apply(std::span<const DefaultsChange> changes) override;
  std::vector<std::string> keys() override;
  bool synchronize() override;
  bool checkpoint() override;
  bool isLoaded() override;
  void whenLoaded(std::function<void()> done) override;

  /// The values of the last successful synchronize().
  Dictionary keptOnDisk();

  /// Returns to the values on the disk.
  void loseUnsynchronized();

  /// Counts the calls of synchronize(), also those that failed.
  int synchronizeCount();

  /// Counts the calls of checkpoint().
  int checkpointCount();

  /// Makes the disk unreadable, as at the start of a process that finds no home yet: nothing is loaded. Call it first.
  void hideDisk();

  /// Makes the disk readable again, which loads the values.
  void showDisk();

  /// Has another disk take the place of the present one, as a home does that is mounted late.
  void mount(const Dictionary& disk);

  /// Makes synchronize() fail and write nothing from now on (true), or work again (false).
  void refuseWrites(bool refuse);

 private:
  using Values = std::map<std::string, Value, std::less<>>;

  void put(std::string_view key, const Value& value) KESU_REQUIRES(mutex_);
  void grow(std::string_view key, std::string_view suffix) KESU_REQUIRES(mutex_);
  void erase(std::string_view key) KESU_REQUIRES(mutex_);
  void raise(const std::string& key, const Value& value) KESU_REQUIRES(mutex_);

  Mutex mutex_;
  Values values_ KESU_GUARDED_BY(mutex_);
  Values onDisk_ KESU_GUARDED_BY(mutex_);
  int synchronizeCount_ KESU_GUARDED_BY(mutex_) = 0;
  int checkpointCount_ KESU_GUARDED_BY(mutex_) = 0;
  bool refusesWrites_ KESU_GUARDED_BY(mutex_) = false;
  bool isLoaded_ KESU_GUARDED_BY(mutex_) = true;
  std::map<std::string, std::string, std::less<>> grown_ KESU_GUARDED_BY(mutex_);  // What this process has appended.
  std::set<std::string> raised_ KESU_GUARDED_BY(mutex_);
  std::vector<std::function<void()>> waiting_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
