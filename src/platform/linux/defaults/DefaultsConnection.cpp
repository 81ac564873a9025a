#include "platform/linux/defaults/DefaultsConnection.h"

#include <system_error>

namespace kesu {
namespace {

constexpr int kOpenFlags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_EXRESCODE;

}  // namespace

StoreStatus DefaultsConnection::open(const std::string& name, int flags) {
  sqlite3* database = nullptr;
  const int code = sqlite3_open_v2(name.c_str(), &database, kOpenFlags | flags, nullptr);
  database_.reset(database);
  if (code != SQLITE_OK) {
    return failed(code);
  }
  sqlite3_busy_timeout(database, kBusyTimeoutMs);
  return StoreStatus::Ok;
}

StoreStatus DefaultsConnection::prepare(const char* sql, SqliteStatement& statement) {
  sqlite3_stmt* prepared = nullptr;
  const int code = sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
  statement.reset(prepared);
  return code == SQLITE_OK ? StoreStatus::Ok : failed(code);
}

StoreStatus DefaultsConnection::execute(const char* sql) {
  const int code = sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr);
  return code == SQLITE_OK ? StoreStatus::Ok : failed(code);
}

StoreStatus DefaultsConnection::run(sqlite3_stmt* statement, std::int64_t* number) {
  int code = sqlite3_step(statement);
  if (code == SQLITE_ROW && number != nullptr) {
    *number = sqlite3_column_int64(statement, 0);
    code = sqlite3_step(statement);
  }
  const StoreStatus status = code == SQLITE_DONE || code == SQLITE_ROW ? StoreStatus::Ok : failed(code);
  sqlite3_reset(statement);
  return status;
}

StoreStatus DefaultsConnection::failed(int code) {
  failureText_ = sqlite3_errstr(code);
  if (code == SQLITE_READONLY) {
    return StoreStatus::Suspect;  // Asked whether the file may be written, the system said yes: its header forbids it.
  }
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return StoreStatus::Busy;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    // No statement of ours is wrong in itself: the tables are not those that we made.
    case SQLITE_ERROR:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH:
      return StoreStatus::Suspect;
    default:
      return StoreStatus::Failed;
  }
}

StoreStatus DefaultsConnection::failedWith(int error) {
  failureText_ = std::generic_category().message(error);
  return StoreStatus::Failed;
}

}  // namespace kesu
