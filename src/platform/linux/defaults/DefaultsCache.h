#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/UserDefaults.h>

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/defaults/DefaultsEntry.h"

namespace kesu {

/// The user defaults in memory, and which of them the file does not have yet. Any thread; every operation is atomic and
/// none touches the file. Its mutex is the last to be locked.
class DefaultsCache {
 public:
  /// Lengths tell most keys apart, at a third of the cost of an alphabetical look-up.
  struct ShorterFirst {
    using is_transparent = void;
    bool operator()(std::string_view left, std::string_view right) const {
      return left.size() != right.size() ? left.size() < right.size() : left < right;
    }
  };

  using Entries = std::map<std::string, DefaultsEntry, ShorterFirst>;

  /// Which value stays when both the file and the memory have one under a key.
  enum class Newer {
    Memory,  ///< The memory had the file's values before.
    File     ///< What is in memory was written without knowing the file. Only what was appended to a text is added.
  };

  /// Changes on their way to the file, with what is needed to take them back. One at a time; its owner keeps it for its
  /// room.
  struct Batch {
    struct Origin {
      Entries::iterator entry;
      DefaultsEntry::Unsaved unsaved;
      std::size_t savedSize;
    };

    std::vector<StoreChange> changes;  ///< Their keys are valid until finish().
    std::vector<Origin> origins;       ///< One per change.
  };

  /// Copies the value under `key`. Nothing when there is none, or when it is in the file only.
  std::optional<Value> get(std::string_view key);

  /// Whether there is a value under `key`, here or in the file only.
  bool contains(std::string_view key);

  /// Whether the value under `key` is in the file only: fill() brings it.
  bool isUnread(std::string_view key);

  /// Replaces a value; an equal one is left alone. An array or dictionary is compared with the former one, which must
  /// have been read before. Returns false when `value` is no property-list value.
  bool set(std::string_view key, Value value);

  void remove(std::string_view key);

  /// Makes changes in one step. A text that is appended to replaces a value of another kind.
  void apply(std::span<const DefaultsChange> changes);

  std::vector<std::string> keys();
  std::vector<std::string> unreadKeys();

  /// Adds what the file has.
  void load(Entries saved, Newer newer);

  /// Puts the value that was read from the file in its place, unless the key was changed meanwhile. Nothing: the file
  /// has no value that makes sense, and the key is dropped.
  void fill(std::string_view key, std::optional<Value> value);

  /// Drops the keys whose values are in the file only.
  void dropUnread();

  /// Counts every value as one that the file does not have.
  void markAllUnsaved();

  bool hasUnsaved();

  /// Puts everything that the file does not have into `batch`, which is empty, and counts it as saved.
  void collect(Batch& batch);

  /// Empties `batch`. Unless it was saved, its changes count as unsaved again.
  void finish(Batch& batch, bool isSaved);

 private:
  using Unsaved = DefaultsEntry::Unsaved;

  bool put(std::string_view key, Value value, std::optional<std::string> list) KESU_REQUIRES(mutex_);
  bool putInParts(std::string_view key, Value value) KESU_REQUIRES(mutex_);
  void grow(std::string_view key, std::string_view suffix) KESU_REQUIRES(mutex_);
  void erase(std::string_view key) KESU_REQUIRES(mutex_);
  void raise(std::string_view key, const Value& value) KESU_REQUIRES(mutex_);
  const DefaultsEntry* find(std::string_view key) const KESU_REQUIRES(mutex_);
  Entries::iterator findText(std::string_view key) KESU_REQUIRES(mutex_);
  Entries::iterator clear(std::string_view key, Entries::iterator found) KESU_REQUIRES(mutex_);
  std::vector<std::string> keysWith(bool DefaultsEntry::*flag) KESU_EXCLUDES(mutex_);
  void mark(Entries::iterator entry, Unsaved unsaved) KESU_REQUIRES(mutex_);
  void giveBack(const Batch& batch) KESU_REQUIRES(mutex_);
  void dropRemoved(const Batch& batch) KESU_REQUIRES(mutex_);

  Mutex mutex_;
  Entries entries_ KESU_GUARDED_BY(mutex_);
  std::vector<Entries::iterator> unsaved_ KESU_GUARDED_BY(mutex_);
  bool isBeingSaved_ KESU_GUARDED_BY(mutex_) = false;  // A batch is on its way to the file, and may come back.
};

}  // namespace kesu
