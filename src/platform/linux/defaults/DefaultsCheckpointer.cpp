#include "platform/linux/defaults/DefaultsCheckpointer.h"

#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

constexpr int kCheckpointFlags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;

SqliteDatabase open(const std::string& path) {
  sqlite3* connection = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &connection, kCheckpointFlags, nullptr);
  SqliteDatabase database(connection);
  if (code != SQLITE_OK) {
    return nullptr;
  }
  // Closing must not remove a journal: after the store was set aside, a new store's journal has the same name.
  sqlite3_db_config(connection, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  // A connection that has read nothing does not know that there is a journal.
  const int read = sqlite3_exec(connection, "PRAGMA wal_autocheckpoint=0; SELECT count(*) FROM sqlite_schema", nullptr,
                                nullptr, nullptr);
  return read == SQLITE_OK ? std::move(database) : nullptr;
}

}  // namespace

bool DefaultsCheckpointer::moveJournal(const std::string& path) {
  return run(path, SQLITE_CHECKPOINT_PASSIVE);
}

bool DefaultsCheckpointer::emptyJournal(const std::string& path) {
  return run(path, SQLITE_CHECKPOINT_TRUNCATE);
}

bool DefaultsCheckpointer::findsDamage(const std::string& path) {
  sqlite3_stmt* prepared = nullptr;
  int code = SQLITE_BUSY;
  if (openOnce(path)) {
    code = sqlite3_prepare_v2(database_.get(), "PRAGMA quick_check(1)", -1, &prepared, nullptr);
  }
  const SqliteStatement rows(prepared);
  if (code == SQLITE_OK) {
    code = sqlite3_step(prepared);
  }
  return code == SQLITE_ROW ? columnBytes(prepared, 0) != "ok" : (code & 0xff) == SQLITE_CORRUPT;
}

bool DefaultsCheckpointer::openOnce(const std::string& path) {
  if (!database_) {
    database_ = open(path);
  }
  return database_ != nullptr;
}

bool DefaultsCheckpointer::run(const std::string& path, int mode) {
  int frames = 0;
  int copied = 0;
  return openOnce(path) && sqlite3_wal_checkpoint_v2(database_.get(), nullptr, mode, &frames, &copied) == SQLITE_OK &&
         frames == copied;
}

}  // namespace kesu
