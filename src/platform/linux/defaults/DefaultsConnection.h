#pragma once

#include <cstdint>
#include <string>

#include "platform/linux/defaults/SqliteHandles.h"

namespace kesu {

/// Result of an operation on the store of user defaults.
enum class StoreStatus {
  Ok,        ///< Done, and in the hands of the system.
  ReadOnly,  ///< The values were read, but none can be written. The store is closed again.
  Busy,      ///< Another process has locked the file. Nothing was changed; worth another try.
  Stale,     ///< Parts of an array were to be replaced that another process has changed. Nothing was written; the whole
             ///< array can be.
  Suspect,   ///< The file may be damaged or not ours; or something else went wrong and looks like it. DefaultsStore
             ///< turns it into one of the next two.
  Corrupt,   ///< The file is proven to be damaged or not ours. It should be set aside.
  Failed     ///< Not permitted, no space, no memory, input/output error. Nothing was changed.
};

/// A connection to the database of a DefaultsStore that reports its failures as StoreStatus. One thread at a time.
class DefaultsConnection {
 public:
  /// How long an operation waits for another process. A transaction takes far less, and the caller waits as well.
  static constexpr int kBusyTimeoutMs = 50;

  /// Opens the database `name`, a path or a "file:" name, with further `flags` of SQLite.
  StoreStatus open(const std::string& name, int flags);

  /// Closes it. Statements on it must have been destroyed before.
  void close() { database_.reset(); }

  bool isOpen() const { return database_ != nullptr; }

  /// Returns the handle for calls that have no wrapper here. Null unless open.
  sqlite3* handle() const { return database_.get(); }

  /// Compiles `sql` into a statement. The connection must be open, here and below.
  StoreStatus prepare(const char* sql, SqliteStatement& statement);

  /// Runs one or more statements and ignores their rows.
  StoreStatus execute(const char* sql);

  /// Runs a statement to its end and resets it. Writes the first column of its row, if there is one, to `number`.
  StoreStatus run(sqlite3_stmt* statement, std::int64_t* number = nullptr);

  /// Maps an error of SQLite to a status and keeps its text.
  StoreStatus failed(int code);

  /// Returns Failed and keeps the text of an errno value.
  StoreStatus failedWith(int error);

  /// The text of the last failure.
  const std::string& failureText() const { return failureText_; }

  /// Replaces that text.
  void setFailureText(std::string text) { failureText_ = std::move(text); }

 private:
  SqliteDatabase database_;
  std::string failureText_;
};

}  // namespace kesu
