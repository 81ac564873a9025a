#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/kesu-dev/records/Database.h"
#include "tools/kesu-dev/records/StoredRecord.h"

namespace kesu::dev {

/// How many records arrived.
struct Counts {
  std::int64_t good = 0;
  std::int64_t bad = 0;
  std::int64_t duplicates = 0;  // Also counted as good or bad.
  std::int64_t wasStored = 0;   // Also counted as good or bad.

  std::int64_t total() const { return good + bad; }
};

/// Counts by destination; "" for records without one.
using CountsByDestination = std::map<std::string, Counts>;

Counts sum(const CountsByDestination& counts);

/// Returns the counts as JSON for `GET /all`, without the faults.
Dictionary describeCounts(const CountsByDestination& counts);

/// The records that arrived, in one SQLite database. Every operation may be called from any thread.
///
/// A file survives the death of this program at any moment, but not a power cut (nothing is flushed).
class RecordStore {
 public:
  enum class Which {
    All,
    Good,
    Bad,
    Messages,  // Receipts and button presses of messages: destination "n".
  };

  /// How far the store has come, for those who follow it.
  struct News {
    std::int64_t lastId = 0;
    std::int64_t resets = 0;  // How often reset() was called.
  };

  /// Opens or creates the file; an empty name keeps everything in memory. Returns null and one sentence in `error` on
  /// failure.
  static std::unique_ptr<RecordStore> open(const std::string& file, std::string& error);

  /// Takes ownership of a database that has the schema.
  explicit RecordStore(std::unique_ptr<Database> database);

  /// Stores a record and returns it with its id and the record it repeats; nothing when the database fails (disk
  /// full).
  std::optional<StoredRecord> add(StoredRecord record);

  /// Returns at most `limit` records with an id above `after`, oldest first.
  std::vector<StoredRecord> read(Which which, std::int64_t after, std::size_t limit);

  CountsByDestination counts() const;
  News news() const;

  /// Identifies the database: equal ids of another one mean other records.
  std::string identity() const;

  /// Waits until there is news beyond `known`, interrupt() is called or the time is up.
  News waitForNews(const News& known, std::chrono::milliseconds patience) const;

  /// Wakes all that wait, without news.
  void interrupt();

  /// Removes all records. Ids continue to count.
  bool reset();

 private:
  std::int64_t firstWithMessageId(const std::string& messageId) KESU_REQUIRES(mutex_);
  bool insert(const StoredRecord& record) KESU_REQUIRES(mutex_);
  void count(const StoredRecord& record) KESU_REQUIRES(mutex_);
  void load() KESU_REQUIRES(mutex_);

  mutable Mutex mutex_;
  mutable std::condition_variable_any changed_;
  std::unique_ptr<Database> database_ KESU_GUARDED_BY(mutex_);
  Statement insert_ KESU_GUARDED_BY(mutex_);
  Statement findMessageId_ KESU_GUARDED_BY(mutex_);
  CountsByDestination counts_ KESU_GUARDED_BY(mutex_);
  std::string identity_ KESU_GUARDED_BY(mutex_);
  News news_ KESU_GUARDED_BY(mutex_);
  std::int64_t interruptions_ KESU_GUARDED_BY(mutex_) = 0;
};

}  // namespace kesu::dev
