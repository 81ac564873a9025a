#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/defaults/DefaultsConnection.h"

namespace kesu {

/// An entry as it was found in the file.
struct StoredEntry {
  std::int64_t number = 0;
  std::string key;
  std::optional<Value> value;  ///< Nothing: an array or dictionary that was not read, or nothing that can be read.
  std::int64_t stamp = -1;     ///< Of an array in parts that was read whole: its stamp; else -1.
  int unreadableCount = 0;  ///< Pieces of it that made no sense: the value, or parts of an array, which are left out.
};

/// Reads the tables of a DefaultsStore.
///
/// What all starts have to wait for is small: arrays and dictionaries stay in the file until they are asked for, and
/// the pages that hold them are not touched. To be used for one operation and then destroyed, before the connection
/// closes.
class DefaultsReader {
 public:
  /// `connection` is open and outlives the reader.
  explicit DefaultsReader(DefaultsConnection& connection) : connection_(connection) {}

  /// Appends all entries, by key, and their values but for arrays and dictionaries. An entry of an unknown kind counts
  /// in `unreadableCount` and is left out.
  StoreStatus readAll(std::vector<StoredEntry>& entries, int& unreadableCount);

  /// Reads the entry under `entry.key` with its value, all of it as one transaction left it. No value when the key is
  /// not there.
  StoreStatus readEntry(StoredEntry& entry);

 private:
  using TakeText = std::function<void(std::int64_t id, std::string_view text)>;

  StoreStatus readGrowth(StoredEntry& entry);
  StoreStatus readParts(StoredEntry& entry);
  StoreStatus eachSuffix(std::int64_t number, const TakeText& take);

  DefaultsConnection& connection_;
  SqliteStatement suffixes_;
};

}  // namespace kesu
