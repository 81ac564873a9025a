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
  std::optional<Value>
      value;                ///< Nothing: an array or dictionary that was not read, or a value that cannot be decoded.
  std::int64_t stamp = -1;  ///< Of an array in parts that was read whole: its stamp; else -1.
  int unreadableCount = 0;  ///< Pieces that cannot be decoded, and are left out: the value, or parts of an array.
};

/// Reads the tables of a DefaultsStore.
///
/// A start waits for little: arrays and dictionaries stay in the file until they are asked for, and their pages are not
/// touched. Make one reader per operation, and destroy it before the connection closes.
class DefaultsReader {
 public:
  /// `connection` is open and must outlive the reader.
  explicit DefaultsReader(DefaultsConnection& connection) : connection_(connection) {}

  /// Appends all entries in the order of their keys, without the values of arrays and dictionaries. An entry of an
  /// unknown kind is left out and adds to `unreadableCount`.
  StoreStatus readAll(std::vector<StoredEntry>& entries, int& unreadableCount);

  /// Reads the entry under `entry.key` with its value, in one transaction. No value when the key is not in the file.
  StoreStatus readEntry(StoredEntry& entry);

 private:
  using ReceiveText = std::function<void(std::int64_t id, std::string_view text)>;

  StoreStatus readGrowth(StoredEntry& entry);
  StoreStatus readParts(StoredEntry& entry);
  StoreStatus eachSuffix(std::int64_t number, const ReceiveText& receive);

  DefaultsConnection& connection_;
  SqliteStatement suffixes_;
};

}  // namespace kesu
