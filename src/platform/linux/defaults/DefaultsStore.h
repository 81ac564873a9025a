#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/defaults/DefaultsConnection.h"
#include "platform/linux/defaults/DefaultsReader.h"
#include "platform/linux/defaults/DefaultsWriter.h"

namespace kesu {

/// The file behind LinuxUserDefaults: a SQLite database with a journal beside it (its write-ahead log).
///
/// Table "entry" has a row for each key. A text that grows has further rows in table "suffix", so that an append writes
/// one page of 1 KB however long the text is. A suffix row is rewritten until it has DefaultsWriter::kSuffixBytes; that
/// keeps the number of rows, and with it the time of open(), small. The file and its companions are private to the
/// user (0600).
///
/// A long array lies in parts of kPartElements elements, a row of "suffix" each, so that a change in it writes the
/// parts that it touches. Its row in "entry" has a random number that every write changes: a process that finds another
/// number than its own last one knows that another process has written, and writes the whole array.
///
/// open() reads what is small; arrays and dictionaries are read one by one when they are asked for.
///
/// One thread at a time: the owner locks a mutex around every call. Nothing waits for the disk, except destruction. It
/// does not log; failureText() says what went wrong.
class DefaultsStore {
 public:
  /// open() does not check a larger file for damage, which would delay the start of the application.
  static constexpr std::int64_t kCheckedByOpenBytes = std::int64_t{256} << 10;

  /// Receives a key. No value: an array or dictionary, which read() returns.
  using Loaded = std::function<void(std::string key, std::optional<Value> value)>;

  /// Touches nothing yet. `directory` may be missing; open() makes it.
  DefaultsStore(std::string directory, std::string fileName);

  /// Closes the file, which moves what is left in the journal into it and waits for the disk.
  ~DefaultsStore();

  DefaultsStore(const DefaultsStore&) = delete;
  DefaultsStore& operator=(const DefaultsStore&) = delete;

  /// Opens the file, making it when it is missing, and calls `loaded` for every key: all of them when the result is Ok
  /// or ReadOnly, else none. A link or anything else but a regular file is refused (Failed). A store that is ReadOnly
  /// cannot be read later: it passes all values to `loaded`.
  StoreStatus open(const Loaded& loaded);

  /// Whether open() has returned Ok.
  bool isOpen() const { return connection_.isOpen(); }

  /// Whether another directory has taken the place of the one in which the store was opened.
  bool isElsewhere() const;

  /// Reads the value under `key` as it is in the file now. None when the key is missing, or when it cannot be decoded,
  /// which counts in unreadableCount(). The store must be open.
  StoreStatus read(std::string_view key, std::optional<Value>& value);

  /// Makes all changes in one transaction, or none. The store must be open.
  StoreStatus write(const std::vector<StoreChange>& changes);

  /// Closes the store without touching the file any more, then renames the file and its companions to
  /// "<name>.corrupt", "<name>.corrupt-wal" and so on. False when the file cannot be renamed.
  bool setAside();

  /// The path of the file, without links. Empty until open() has found or made the directory.
  const std::string& path() const { return path_; }

  /// Counts the values and parts of arrays that open() and read() could not decode and left out.
  int unreadableCount() const { return unreadableCount_; }

  /// Counts the transactions since construction.
  std::uint64_t commitCount() const { return commitCount_; }

  /// Bytes in the journal.
  std::int64_t journalBytes() const { return journalBytes_; }

  /// Whether the file is still to be checked for damage, on a thread that may take the time: open() has not done it.
  bool isUnchecked() const { return isUnchecked_; }

  /// Takes note that the file was checked. Returns Corrupt when it is damaged, also by its own proof.
  StoreStatus noteChecked(bool isDamaged);

  /// Lets a checkpoint move everything that was written so far, while further writes stay possible.
  void shareJournal();

  /// Releases the journal, so that it can be emptied before the next write.
  void releaseJournal();

  /// Takes note that the journal was emptied.
  void noteJournalEmptied();

  /// The text of the last failure.
  const std::string& failureText() const { return connection_.failureText(); }

 private:
  using Entries = std::vector<StoredEntry>;
  using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;  // Device and number on it.

  StoreStatus prepareFile();
  StoreStatus openWritable(Entries& entries);
  StoreStatus configure();
  StoreStatus openReadOnly(Entries& entries);
  StoreStatus judged(StoreStatus status);
  StoreStatus readAllWhole(Entries& entries);
  StoreStatus makeTables();
  StoreStatus checkIfSmall();
  StoreStatus ask(const char* sql, std::int64_t& answer);
  void shareJournalIfReleased();
  void noteCommit();
  void close();

  const std::string directory_;
  const std::string fileName_;
  std::string path_;
  FileIdentity home_;
  DefaultsConnection connection_;
  SqliteStatement hold_;  // After the connection, as is the writer: statements are destroyed before it is closed.
  DefaultsWriter writer_{connection_};
  int unreadableCount_ = 0;
  std::uint64_t commitCount_ = 0;
  std::int64_t journalBytes_ = 0;
  bool isUnchecked_ = false;
  bool holdsJournal_ = false;
  bool syncsJournalHeader_ = false;
};

}  // namespace kesu
