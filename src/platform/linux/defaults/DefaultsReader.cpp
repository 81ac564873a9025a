#include "platform/linux/defaults/DefaultsReader.h"

#include <iterator>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/linux/defaults/DefaultsSchema.h"
#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

// A column that is not asked for costs nothing: the pages that a long value lies in are not read. 7 and 8 are the kinds
// of arrays and dictionaries.
constexpr char kReadAll[] =
    "SELECT key, number, kind, CASE WHEN kind IN (7, 8) THEN NULL ELSE value END FROM entry ORDER BY key";

}  // namespace

StoreStatus DefaultsReader::readAll(std::vector<StoredEntry>& entries, int& unreadableCount) {
  SqliteStatement rows;
  StoreStatus status = connection_.prepare(kReadAll, rows);
  int code = SQLITE_ROW;
  std::optional<std::string> last;
  while (status == StoreStatus::Ok && (code = sqlite3_step(rows.get())) == SQLITE_ROW) {
    StoredEntry entry;
    entry.key = columnBytes(rows.get(), 0);
    entry.number = sqlite3_column_int64(rows.get(), 1);
    // Out of order, a key may not be found again; and pages linked in a circle would be read for ever.
    if (last && entry.key <= *last) {
      return connection_.failed(SQLITE_CORRUPT);
    }
    last = entry.key;
    const bool isContainer = columnIsContainer(rows.get(), 2);
    entry.value = isContainer ? std::nullopt : columnValue(rows.get(), 2);
    if (!isContainer && !entry.value) {
      ++unreadableCount;
      continue;
    }
    status = readGrowth(entry);
    entries.push_back(std::move(entry));
  }
  return status != StoreStatus::Ok || code == SQLITE_DONE ? status : connection_.failed(code);
}

StoreStatus DefaultsReader::readEntry(StoredEntry& entry) {
  SqliteStatement row;
  const StoreStatus status = connection_.prepare("SELECT number, kind, value FROM entry WHERE key=?1", row);
  if (status != StoreStatus::Ok) {
    return status;
  }
  bindText(row.get(), 1, entry.key);
  const int code = sqlite3_step(row.get());
  if (code != SQLITE_ROW) {
    return code == SQLITE_DONE ? StoreStatus::Ok : connection_.failed(code);
  }
  entry.number = sqlite3_column_int64(row.get(), 0);
  entry.value = columnValue(row.get(), 1);
  entry.unreadableCount += entry.value ? 0 : 1;
  if (!columnIsInParts(row.get(), 1)) {
    return readGrowth(entry);
  }
  // The row's statement is not at its end yet: what follows belongs to the same transaction.
  entry.stamp = sqlite3_column_int64(row.get(), 2) & kStampMask;
  return readParts(entry);
}

// Completes a text by what was appended to it.
StoreStatus DefaultsReader::readGrowth(StoredEntry& entry) {
  const std::string* text = entry.value ? entry.value->text() : nullptr;
  if (text == nullptr) {
    return StoreStatus::Ok;
  }
  std::string grown;
  const StoreStatus status = eachSuffix(entry.number, [&grown](std::int64_t, std::string_view more) { grown += more; });
  if (!grown.empty()) {
    entry.value = Value(*text + grown);
  }
  return status;
}

StoreStatus DefaultsReader::readParts(StoredEntry& entry) {
  Array array;
  std::int64_t place = firstSuffix(entry.number);
  bool isInPlace = true;
  const StoreStatus status = eachSuffix(entry.number, [&](std::int64_t id, std::string_view text) {
    std::optional<Value> part = parsePropertyList(text, PropertyListForm::Escaped);
    Array* elements = part ? part->array() : nullptr;
    isInPlace = isInPlace && elements != nullptr && id == place++ && array.size() % kPartElements == 0;
    if (elements == nullptr) {
      ++entry.unreadableCount;
      return;
    }
    std::move(elements->begin(), elements->end(), std::back_inserter(array));
  });
  entry.value = std::move(array);
  // Elements that are not in the place that they have in the file can only be written all together.
  entry.stamp = isInPlace ? entry.stamp : -1;
  return status;
}

// Calls `receive` for each suffix row of an entry, in their order.
StoreStatus DefaultsReader::eachSuffix(std::int64_t number, const ReceiveText& receive) {
  StoreStatus status = StoreStatus::Ok;
  if (!suffixes_) {
    status = connection_.prepare("SELECT id, text FROM suffix WHERE id BETWEEN ?1 AND ?2 ORDER BY id", suffixes_);
  }
  if (status != StoreStatus::Ok) {
    return status;
  }
  const SqliteRun rows(suffixes_.get());
  sqlite3_bind_int64(rows.get(), 1, firstSuffix(number));
  sqlite3_bind_int64(rows.get(), 2, lastSuffix(number));
  int code = SQLITE_ROW;
  std::int64_t last = -1;
  while ((code = sqlite3_step(rows.get())) == SQLITE_ROW) {
    const std::int64_t id = sqlite3_column_int64(rows.get(), 0);
    if (id <= last) {  // Pages linked in a circle would be read for ever.
      return connection_.failed(SQLITE_CORRUPT);
    }
    last = id;
    receive(id, columnBytes(rows.get(), 1));
  }
  return code == SQLITE_DONE ? StoreStatus::Ok : connection_.failed(code);
}

}  // namespace kesu
