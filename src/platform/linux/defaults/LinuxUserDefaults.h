#pragma once

#include <kesu/platform/UserDefaults.h>

#include <chrono>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/defaults/DefaultsCache.h"
#include "platform/linux/defaults/DefaultsCheckpointer.h"
#include "platform/linux/defaults/DefaultsFile.h"

namespace kesu {

/// User defaults in a file, with all values in memory that were asked for.
///
/// The file is opened by the first operation, not by the constructor. Opening reads the keys and all values but arrays
/// and dictionaries, so that a full inbox costs a start nothing. Such a value is read by the first get() of its key or
/// by the set() of another one, and stays in memory. What synchronize() has returned true for survives the death of the
/// process; after power loss the file is whole and at least as new as the last checkpoint().
///
/// Failures: while a file cannot be opened or written, the values stay in memory; synchronize() returns false and tries
/// again the next time. Opening is tried again by checkpoint(), and by synchronize() after a pause; what was written
/// meanwhile is then joined with the file as UserDefaults says. The same happens when another directory takes the place
/// of the one in which the file was opened, as a file system does that is mounted late. A file that is proven to be
/// damaged or not ours is renamed to "<name>.corrupt" and replaced: by an empty one when that shows at opening, later
/// by what is in memory and what can still be read; a failure to read is no damage (isProvenDamaged()). A large file is
/// checked for damage by the first checkpoint() only. An array or dictionary that cannot be decoded is absent from its
/// first get() on; an array in parts comes without the parts that cannot. Each kind of failure is logged once (level
/// 2).
///
/// A long array costs what has changed in it: set() compares, and synchronize() writes the changed parts.
///
/// Two processes can share the file: of two values written under one key the later stays. Neither sees what the other
/// writes after opening, except in an array or dictionary that it has not read yet. In a forked child every operation
/// returns nothing or false and changes nothing: a mutex may be locked by a thread that only the parent has.
///
/// This class is the service; DefaultsCache keeps the values, DefaultsFile reads and writes them.
class LinuxUserDefaults final : public UserDefaults {
 public:
  /// Touches nothing yet. `preferencesDirectory` is made when it is missing; if it is empty, nothing is kept on disk.
  /// synchronize() looks for a file that could not be opened after `retryPause` at the earliest.
  explicit LinuxUserDefaults(std::string preferencesDirectory, std::string fileName = "kesu.defaults",
                             std::chrono::milliseconds retryPause = DefaultsFile::kRetryPause);

  /// Closes the file. What was not synchronized is lost.
  ~LinuxUserDefaults() override;

  LinuxUserDefaults(const LinuxUserDefaults&) = delete;
  LinuxUserDefaults& operator=(const LinuxUserDefaults&) = delete;

  /// Sets what asks for a checkpoint(): called by the first synchronize() that writes, and then whenever the journal
  /// has grown by DefaultsFile::kJournalLimitBytes; on the caller's thread, without a mutex locked. Set it before first
  /// use.
  void onCheckpointWanted(std::function<void()> ask) { askForCheckpoint_ = std::move(ask); }

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

 private:
  bool checkpointOnce(bool& isMoved) KESU_REQUIRES(checkpointMutex_);

  std::function<void()> askForCheckpoint_;
  DefaultsCache cache_;
  Mutex checkpointMutex_;  // Locked before those of the file and the cache.
  // Destroyed after the file: closing that one then leaves the journal alone, and nothing waits for the disk.
  DefaultsCheckpointer checkpointer_ KESU_GUARDED_BY(checkpointMutex_);
  DefaultsFile file_;
};

}  // namespace kesu
