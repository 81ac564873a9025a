#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/SqliteHandles.h"

namespace kesu {

/// How an operation of the store ended.
enum class StoreStatus {
  Ok,        ///< Done, and in the hands of the system.
  ReadOnly,  ///< The values were read, but none can be written. The store is closed again.
  Busy,      ///< Another process holds the file. Nothing was changed; worth another try.
  Stale,     ///< Parts were to be replaced of an array that the file does not have so. Nothing was changed; the whole
             ///< array can be written.
  Corrupt,   ///< The file is damaged or no store of ours. It should be set aside.
  Failed     ///< Not permitted, no space, input/output error. Nothing was changed.
};

/// One change that a transaction makes to the store.
struct StoreChange {
  enum class Kind {
    Put,       ///< `value` replaces what is under the key, appended texts included.
    PutParts,  ///< `parts` replace those of the array under the key, which then has `partCount` of them; all of it when
               ///< `isWhole`.
    Remove,    ///< The key goes, appended texts included.
    Append     ///< `text` is added to the text under the key, which is there.
  };

  Kind kind = Kind::Put;
  std::string_view key;
  Value value;       ///< For Put.
  std::string text;  ///< For Append: the suffix. For Put of an array or dictionary: its property list, if made already.
  std::map<std::size_t, std::string> parts;  ///< Property lists of parts of an array by their place.
  std::size_t partCount = 0;
  bool isWhole = false;
};

/// The file behind LinuxUserDefaults: a SQLite database with a journal beside it (its write-ahead log).
///
/// Table "entry" has a row for each key. A text that grows has further rows in table "suffix", so that an append writes
/// one page of 1 KB however long the text is. A suffix row is rewritten until it holds kSuffixBytes; that keeps the
/// number of rows, and with it the time of open(), small. The file and its companions are private to the user (0600).
///
/// A long array lies in parts of kPartElements elements, a row of "suffix" each, so that a change in it writes the
/// parts that it touches. Its row in "entry" holds a random number that every write changes: whoever finds another
/// number than its own last one knows that another process has written, and writes the whole array.
///
/// One thread at a time: the owner holds a mutex around every call. Nothing waits for the disk, except destruction. It
/// does not log; failureText() says what went wrong.
class DefaultsStore {
 public:
  /// A suffix row that holds this many bytes is full.
  static constexpr std::size_t kSuffixBytes = 256;

  /// Elements in each part of a long array but the last. Part of the format on disk.
  static constexpr std::size_t kPartElements = 16;

  /// How long an operation waits for another process.
  static constexpr int kBusyTimeoutMs = 50;

  using Loaded = std::function<void(std::string key, Value value)>;

  /// Touches nothing yet. `directory` may be missing; open() makes it.
  DefaultsStore(std::string directory, std::string fileName);

  /// Closes the file, which moves what is left in the journal into it and waits for the disk.
  ~DefaultsStore();

  DefaultsStore(const DefaultsStore&) = delete;
  DefaultsStore& operator=(const DefaultsStore&) = delete;

  /// Opens the file, making it when it is missing, and hands every value to `loaded`: all of them when the result is Ok
  /// or ReadOnly, else none. A link or anything else but a regular file is refused (Failed).
  StoreStatus open(const Loaded& loaded);

  /// Whether open() was called and ended Ok.
  bool isOpen() const { return database_ != nullptr; }

  /// Makes all changes in one transaction, or none. The store must be open.
  StoreStatus write(const std::vector<StoreChange>& changes);

  /// Closes the store without touching the file any more, then renames the file and its companions to
  /// "<name>.corrupt", "<name>.corrupt-wal" and so on. False when the file cannot be renamed.
  bool setAside();

  /// Where the file is, without links. Empty until open() has found or made the directory.
  const std::string& path() const { return path_; }

  /// How many values open() could not make sense of and left out.
  int unreadableCount() const { return unreadableCount_; }

  /// How many transactions were written since construction.
  std::uint64_t commitCount() const { return commitCount_; }

  /// Bytes in the journal.
  std::int64_t journalBytes() const { return journalBytes_; }

  /// Lets a checkpoint move everything that was written so far, while further writes stay possible.
  void shareJournal();

  /// Lets go of the journal, so that it can be emptied before the next write.
  void releaseJournal();

  /// To be told when the journal was emptied.
  void noteJournalEmptied();

  /// The words for the last failure.
  const std::string& failureText() const { return failureText_; }

 private:
  /// What is known of the rows of a key.
  struct Rows {
    bool hasSuffixes = false;
    std::int64_t stamp = -1;  // Of an array in parts: the number that the last write left; else -1.
    std::int64_t tail = 0;    // Id of the suffix row that the next append goes to.
    std::string tailText;     // What that row holds already.
  };
  using KnownRows = std::map<std::string, Rows, std::less<>>;

  struct Statements {
    SqliteStatement begin, commit, rollback, hold, put, update, remove, removeSuffixes, numberOf, lastSuffix, append,
        restamp;
  };

  struct LoadedEntry {
    std::int64_t number = 0;
    std::string key;
    Value value;
    std::int64_t stamp = -1;
    std::string grown;  // What its suffix rows add to a text.
  };
  using LoadedEntries = std::vector<LoadedEntry>;

  StoreStatus prepareFile();
  StoreStatus connect(const std::string& name, int flags);
  StoreStatus openWritable(LoadedEntries& entries);
  StoreStatus openReadOnly(LoadedEntries& entries);
  StoreStatus makeTables();
  StoreStatus check();
  StoreStatus prepareStatements();
  StoreStatus load(LoadedEntries& entries);
  StoreStatus loadSuffixes(LoadedEntries& entries);

  StoreStatus writeOnce(const std::vector<StoreChange>& changes);
  StoreStatus writeTransaction(const std::vector<StoreChange>& changes);
  StoreStatus apply(const StoreChange& change);
  bool isOneStatement(const StoreChange& change) const;
  StoreStatus put(std::string_view key, const Value& value, const std::string& listText);
  StoreStatus putParts(const StoreChange& change);
  StoreStatus putStamp(const StoreChange& change, std::int64_t stamp, std::int64_t& number);
  StoreStatus remove(std::string_view key);
  StoreStatus append(std::string_view key, std::string_view suffix);
  StoreStatus findRows(std::string_view key);
  StoreStatus removeSuffixes(std::int64_t number, std::int64_t from = 0);
  StoreStatus putSuffix(std::int64_t id, std::string_view text);
  bool addSuffix(LoadedEntry& entry, std::string_view text);

  StoreStatus prepare(const char* sql, SqliteStatement& statement);
  StoreStatus execute(const char* sql);
  StoreStatus run(sqlite3_stmt* statement, std::int64_t* number = nullptr);
  StoreStatus failed(int code);
  StoreStatus failedWith(int error);
  void shareJournalIfReleased();
  void forget(std::string_view key);
  void noteCommit();
  void close();

  const std::string directory_;
  const std::string fileName_;
  std::string path_;
  SqliteDatabase database_;
  Statements statements_;  // After the database: they are destroyed first.
  KnownRows rows_;
  std::string failureText_;
  int unreadableCount_ = 0;
  std::uint64_t commitCount_ = 0;
  std::int64_t journalBytes_ = 0;
  bool holdsJournal_ = false;
  bool syncsJournalHeader_ = false;
};

}  // namespace kesu
