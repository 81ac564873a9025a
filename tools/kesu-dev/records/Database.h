#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3;
struct sqlite3_stmt;

namespace kesu::dev {

/// A prepared SQL statement, to be run any number of times. Parameters count from 1, columns from 0. Not thread-safe.
class Statement {
 public:
  Statement(sqlite3& database, std::string_view sql);

  Statement& bind(int parameter, std::int64_t value);

  /// The text must outlive the run of the statement.
  Statement& bind(int parameter, std::string_view text);
  Statement& bindNull(int parameter);

  /// Moves to the next row. False after the last one and when the statement fails; see failed().
  bool nextRow();

  /// Runs a statement without rows and resets it. Returns whether it succeeded.
  bool run();

  std::int64_t integer(int column) const;
  std::string text(int column) const;

  bool failed() const { return failed_; }

  /// Resets the statement for its next run.
  void reset();

 private:
  struct Finalizer {
    void operator()(sqlite3_stmt* statement) const;
  };

  std::unique_ptr<sqlite3_stmt, Finalizer> statement_;
  bool failed_ = false;
};

/// One SQLite connection. Not thread-safe: the owner guards it.
class Database {
 public:
  struct Closer {
    void operator()(sqlite3* handle) const;
  };

  /// Takes ownership of an open connection.
  explicit Database(std::unique_ptr<sqlite3, Closer> handle) : handle_(std::move(handle)) {}

  /// Opens or creates a database file; an empty name means in memory. Returns null and one sentence in `error` on
  /// failure.
  static std::unique_ptr<Database> open(const std::string& file, std::string& error);

  Statement prepare(std::string_view sql) { return Statement(*handle_, sql); }

  /// Runs statements that return nothing. False when one failed; lastError() says why.
  bool execute(const char* sql);

  std::string lastError() const;
  std::int64_t lastInsertedId() const;

 private:
  std::unique_ptr<sqlite3, Closer> handle_;
};

}  // namespace kesu::dev
