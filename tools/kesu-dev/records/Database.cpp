#include "tools/kesu-dev/records/Database.h"

#include <sqlite3.h>

#include <utility>

namespace kesu::dev {
namespace {

// `show --db` may read the file while a collector writes it.
constexpr int kBusyMilliseconds = 2000;

}  // namespace

void Statement::Finalizer::operator()(sqlite3_stmt* statement) const {
  sqlite3_finalize(statement);
}

Statement::Statement(sqlite3& database, std::string_view sql) {
  sqlite3_stmt* prepared = nullptr;
  const int result = sqlite3_prepare_v3(&database, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                                        &prepared, nullptr);
  failed_ = result != SQLITE_OK;
  statement_.reset(prepared);
}

Statement& Statement::bind(int parameter, std::int64_t value) {
  sqlite3_bind_int64(statement_.get(), parameter, value);
  return *this;
}

Statement& Statement::bind(int parameter, std::string_view text) {
  // A null pointer would bind NULL, and an empty view may have one.
  const char* start = text.empty() ? "" : text.data();
  sqlite3_bind_text64(statement_.get(), parameter, start, text.size(), SQLITE_STATIC, SQLITE_UTF8);
  return *this;
}

Statement& Statement::bindNull(int parameter) {
  sqlite3_bind_null(statement_.get(), parameter);
  return *this;
}

bool Statement::nextRow() {
  const int result = sqlite3_step(statement_.get());
  failed_ = result != SQLITE_ROW && result != SQLITE_DONE;
  return result == SQLITE_ROW;
}

bool Statement::run() {
  nextRow();
  reset();
  return !failed_;
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(statement_.get(), column);
}

std::string Statement::text(int column) const {
  const unsigned char* start = sqlite3_column_text(statement_.get(), column);
  const int length = sqlite3_column_bytes(statement_.get(), column);
  return start == nullptr ? std::string() : std::string(start, start + length);
}

void Statement::reset() {
  sqlite3_reset(statement_.get());
  sqlite3_clear_bindings(statement_.get());
}

void Database::Closer::operator()(sqlite3* handle) const {
  sqlite3_close_v2(handle);
}

std::unique_ptr<Database> Database::open(const std::string& file, std::string& error) {
  sqlite3* opened = nullptr;
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  const int result = sqlite3_open_v2(file.empty() ? ":memory:" : file.c_str(), &opened, flags, nullptr);
  std::unique_ptr<sqlite3, Closer> handle(opened);
  if (result != SQLITE_OK) {
    error = opened == nullptr ? "out of memory" : sqlite3_errmsg(opened);
    return nullptr;
  }
  sqlite3_busy_timeout(opened, kBusyMilliseconds);
  return std::make_unique<Database>(std::move(handle));
}

bool Database::execute(const char* sql) {
  return sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::string Database::lastError() const {
  return sqlite3_errmsg(handle_.get());
}

std::int64_t Database::lastInsertedId() const {
  return sqlite3_last_insert_rowid(handle_.get());
}

}  // namespace kesu::dev
