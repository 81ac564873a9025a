#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/defaults/SqliteHandles.h"

namespace kesu {

/// How an operation of the store of user defaults ended.
enum class StoreStatus {
  Ok,        ///< Done, and in the hands of the system.
  ReadOnly,  ///< The values were read, but none can be written. The store is closed again.
  Busy,      ///< Another process holds the file. Nothing was changed; worth another try.
  Stale,     ///< Parts were to be replaced of an array that the file does not have so. Nothing was changed; the whole
             ///< array can be written.
  Corrupt,   ///< The file is damaged or no store of ours. It should be set aside.
  Failed     ///< Not permitted, no space, input/output error. Nothing was changed.
};

/// A connection to the database of a DefaultsStore, with its failures put in the store's words. One thread at a time.
class DefaultsConnection {
 public:
  /// How long an operation waits for another process.
  static constexpr int kBusyTimeoutMs = 50;

  /// Opens the database `name`, a path or a "file:" name. `flags` say how, in SQLite's terms.
  StoreStatus open(const std::string& name, int flags);

  /// Statements made on it go first.
  void close() { database_.reset(); }

  bool isOpen() const { return database_ != nullptr; }

  /// For calls that have no wrapper here. Null unless open.
  sqlite3* handle() const { return database_.get(); }

  /// Makes a statement of `sql`. The connection must be open, here and below.
  StoreStatus prepare(const char* sql, SqliteStatement& statement);

  /// Runs `sql`, which may be several statements, without looking at results.
  StoreStatus execute(const char* sql);

  /// Runs a statement to its end and makes it ready for the next time. The first column of its row, if it has one, goes
  /// to `number`.
  StoreStatus run(sqlite3_stmt* statement, std::int64_t* number = nullptr);

  /// What an error of SQLite means for the store. Keeps its words.
  StoreStatus failed(int code);

  /// Failed, with the words for an errno value.
  StoreStatus failedWith(int error);

  /// The words for the last failure.
  const std::string& failureText() const { return failureText_; }

  /// Puts other words in their place.
  void setFailureText(std::string text) { failureText_ = std::move(text); }

 private:
  SqliteDatabase database_;
  std::string failureText_;
};

}  // namespace kesu
