#pragma once

#include <sqlite3.h>

#include <memory>

namespace kesu {

struct CloseSqlite {
  void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
};

struct FinalizeSqlite {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// Owns a connection to a database. Its statements must be destroyed before it.
using SqliteDatabase = std::unique_ptr<sqlite3, CloseSqlite>;

/// Owns a prepared statement.
using SqliteStatement = std::unique_ptr<sqlite3_stmt, FinalizeSqlite>;

/// Ends the run of a statement with a scope, so that it holds no lock and can be run again.
struct ResetSqlite {
  void operator()(sqlite3_stmt* statement) const { sqlite3_reset(statement); }
};
using SqliteRun = std::unique_ptr<sqlite3_stmt, ResetSqlite>;

}  // namespace kesu
