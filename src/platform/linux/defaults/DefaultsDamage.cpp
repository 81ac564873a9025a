#include "platform/linux/defaults/DefaultsDamage.h"

#include <array>
#include <vector>

#include "platform/linux/defaults/DefaultsConnection.h"
#include "platform/linux/defaults/DefaultsReader.h"
#include "platform/linux/defaults/DefaultsSchema.h"
#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

// The bytes 18 and 19 of a file are the versions needed to write and to read it. SQLite knows 1 and 2.
constexpr std::size_t kVersionsAt = 18;
constexpr std::size_t kHeaderBytes = 100;
constexpr unsigned char kLastVersion = 2;

constexpr int kReadAtOnceBytes = 16 * 1024;

constexpr char kDescribeTables[] =
    "SELECT coalesce(group_concat(sql, ';'), '') FROM"
    " (SELECT sql FROM sqlite_schema WHERE tbl_name IN ('entry', 'suffix') ORDER BY name)";

// The file as SQLite has opened it. Opened by another descriptor, closing that would drop SQLite's locks.
sqlite3_file* fileOf(const DefaultsConnection& connection, int which) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(connection.handle(), "main", which, &file);
  return file != nullptr && file->pMethods != nullptr ? file : nullptr;
}

bool isReadable(sqlite3_file* file) {
  sqlite3_int64 size = 0;
  if (file->pMethods->xFileSize(file, &size) != SQLITE_OK) {
    return false;
  }
  std::vector<char> bytes(kReadAtOnceBytes);
  int code = SQLITE_OK;
  for (sqlite3_int64 offset = 0; offset < size && code == SQLITE_OK; offset += kReadAtOnceBytes) {
    code = file->pMethods->xRead(file, bytes.data(), kReadAtOnceBytes, offset);
  }
  return code == SQLITE_OK || code == SQLITE_IOERR_SHORT_READ;  // The end of the file.
}

StoreStatus askText(DefaultsConnection& connection, const char* sql, std::string& answer) {
  SqliteStatement statement;
  const StoreStatus status = connection.prepare(sql, statement);
  if (status != StoreStatus::Ok) {
    return status;
  }
  const int code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW) {
    return connection.failed(code);
  }
  answer = columnBytes(statement.get(), 0);
  return StoreStatus::Ok;
}

StoreStatus examineHeader(DefaultsConnection& connection) {
  sqlite3_file* file = fileOf(connection, SQLITE_FCNTL_FILE_POINTER);
  std::array<unsigned char, kHeaderBytes> header{};
  const int code = file != nullptr ? file->pMethods->xRead(file, header.data(), kHeaderBytes, 0) : SQLITE_IOERR;
  if (code != SQLITE_OK) {
    return code == SQLITE_IOERR_SHORT_READ ? StoreStatus::Ok : connection.failed(code);
  }
  const bool isKnown = header[kVersionsAt] <= kLastVersion && header[kVersionsAt + 1] <= kLastVersion;
  return isKnown ? StoreStatus::Ok : StoreStatus::Suspect;
}

StoreStatus examineTables(DefaultsConnection& connection) {
  DefaultsConnection model;
  std::string version;
  std::string others;
  std::string tables;
  std::string ours;
  StoreStatus status = model.open(":memory:", SQLITE_OPEN_READWRITE);
  if (status != StoreStatus::Ok || model.execute(kMakeDefaultsTables) != StoreStatus::Ok ||
      askText(model, kDescribeTables, ours) != StoreStatus::Ok) {
    return StoreStatus::Failed;
  }
  for (const auto& [sql, answer] : {std::pair("PRAGMA user_version", &version), std::pair(kCountOtherTables, &others),
                                    std::pair(kDescribeTables, &tables)}) {
    status = status == StoreStatus::Ok ? askText(connection, sql, *answer) : status;
  }
  const bool isNew = version == "0" && others == "0" && tables.empty();
  return status == StoreStatus::Ok && !isNew && tables != ours ? StoreStatus::Suspect : status;
}

StoreStatus examineEntries(DefaultsConnection& connection) {
  std::string verdict;
  StoreStatus status = askText(connection, "PRAGMA quick_check(1)", verdict);
  if (status != StoreStatus::Ok || verdict != "ok") {
    return status != StoreStatus::Ok ? status : StoreStatus::Suspect;
  }
  std::string tables;
  status = askText(connection, kDescribeTables, tables);
  if (status != StoreStatus::Ok || tables.empty()) {
    return status;
  }
  std::vector<StoredEntry> entries;
  int unreadableCount = 0;
  status = DefaultsReader(connection).readAll(entries, unreadableCount);
  for (StoredEntry& entry : entries) {
    if (status == StoreStatus::Ok && !entry.value) {
      status = DefaultsReader(connection).readEntry(entry);
    }
  }
  return status;
}

}  // namespace

bool isProvenDamaged(const std::string& path) {
  DefaultsConnection connection;
  if (connection.open(path, SQLITE_OPEN_READONLY) != StoreStatus::Ok) {
    return false;
  }
  // What may be set aside stays as it was found.
  sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  StoreStatus status = connection.execute("PRAGMA cell_size_check=ON; PRAGMA trusted_schema=OFF");
  for (const auto examine : {examineHeader, examineTables, examineEntries}) {
    status = status == StoreStatus::Ok ? examine(connection) : status;
  }
  if (status != StoreStatus::Suspect) {
    return false;
  }
  // Last, so that a failure that began meanwhile and stays is met.
  sqlite3_file* file = fileOf(connection, SQLITE_FCNTL_FILE_POINTER);
  sqlite3_file* journal = fileOf(connection, SQLITE_FCNTL_JOURNAL_POINTER);
  return file != nullptr && isReadable(file) && (journal == nullptr || isReadable(journal));
}

}  // namespace kesu
