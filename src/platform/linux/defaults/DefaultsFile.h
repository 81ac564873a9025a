#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/defaults/DefaultsCache.h"
#include "platform/linux/defaults/DefaultsCheckpointer.h"
#include "platform/linux/defaults/DefaultsStore.h"
#include "platform/linux/defaults/DefaultsWarnings.h"

namespace kesu {

/// The file that a DefaultsCache is kept in, over the whole life of a process: it is opened late, written, prepared for
/// checkpoints, and replaced when it is damaged. What is done about each failure is decided in open() and settle(), and
/// nowhere else. Any thread. Its mutex is locked before that of the cache.
class DefaultsFile {
 public:
  /// A journal of this size asks for a checkpoint. It is read again at the next start after the process was killed.
  static constexpr std::int64_t kJournalLimitBytes = std::int64_t{256} << 10;

  /// A journal of this size is emptied even if writers have to wait for the disk.
  static constexpr std::int64_t kJournalCeilingBytes = std::int64_t{32} << 20;

  /// How long write() leaves a file alone that could not be opened, or a directory that was looked at: an attempt may
  /// cost the caller DefaultsConnection::kBusyTimeoutMs.
  static constexpr std::chrono::milliseconds kRetryPause{100};

  /// What a checkpoint needs to know of the file while others write it.
  struct Checkpoint {
    std::string path;
    std::uint64_t generation = 0;  ///< Counts the files that have had this path.
    std::uint64_t commits = 0;     ///< Transactions so far.
    bool isUnchecked = false;      ///< Opening had no time to look for damage.
  };

  /// Touches nothing yet. An empty directory means that nothing is kept on disk. `cache` must outlive the file.
  DefaultsFile(DefaultsCache& cache, std::string directory, std::string fileName, std::chrono::milliseconds retryPause);

  /// Closes the file, unless in a forked child: closing would release locks and remove files that the parent process
  /// uses.
  ~DefaultsFile();

  DefaultsFile(const DefaultsFile&) = delete;
  DefaultsFile& operator=(const DefaultsFile&) = delete;

  /// Whether nothing else may be called, but for the destructor. Locks nothing.
  bool isInForkedChild() const { return forkGuard_.isForkedChild(); }

  /// Opens the file and loads the cache from it, in the first call. Returns false, and does nothing, in a forked child.
  bool openOnce();

  /// Whether the cache has the values of earlier runs, or there are none. Locks nothing.
  bool isLoaded() const { return isLoaded_.load(std::memory_order_acquire); }

  /// Calls `done` once isLoaded() is true: now, or in the tell() after the operation that made it true.
  void whenLoaded(std::function<void()> done);

  /// Reads a value into the cache that was left in the file, if it was.
  void readOnce(std::string_view key);

  /// Writes what the cache has and the file has not, not before those who wait for the values were called. Returns
  /// whether it could; `wantsCheckpoint` is set when the journal has grown enough.
  bool write(bool& wantsCheckpoint);

  /// Begins a checkpoint, after another look for the file. `checkpointer` is closed when it is on a former file.
  /// Nothing when there is no file.
  std::optional<Checkpoint> beginCheckpoint(DefaultsCheckpointer& checkpointer);

  /// Takes note that the file was looked through, and replaces it if it is damaged. Returns false when it is another
  /// file now.
  bool noteChecked(const Checkpoint& checkpoint, bool isDamaged);

  /// Empties a journal of which all was moved into the file. Returns false when it has grown meanwhile: the checkpoint
  /// is worth another pass.
  bool finishCheckpoint(const Checkpoint& checkpoint, bool isMoved, DefaultsCheckpointer& checkpointer);

  /// Logs what went wrong. Call it without the mutex of a log sink locked.
  void report();

  /// Calls those who wait for the values if they were loaded. Call it without a mutex locked.
  void tell();

 private:
  using Warning = DefaultsWarnings::Kind;

  void open() KESU_REQUIRES(mutex_);
  void lookAgain() KESU_REQUIRES(mutex_);
  void leaveStore() KESU_REQUIRES(mutex_);
  bool hasNews() const KESU_REQUIRES(mutex_);
  StoreStatus openStore(DefaultsCache::Entries& loaded) KESU_REQUIRES(mutex_);
  StoreStatus read(std::string_view key) KESU_REQUIRES(mutex_);
  StoreStatus writePending() KESU_REQUIRES(mutex_);
  StoreStatus settle(StoreStatus status) KESU_REQUIRES(mutex_);
  StoreStatus replaceStore() KESU_REQUIRES(mutex_);
  void warnThatItCannotBeWritten() KESU_REQUIRES(mutex_);
  bool journalHasGrown() KESU_REQUIRES(mutex_);

  const ForkGuard forkGuard_;
  DefaultsCache& cache_;
  const std::string directory_;
  const std::string fileName_;
  const std::chrono::milliseconds retryPause_;
  std::atomic<bool> isOpened_{false};
  std::atomic<bool> isLoaded_{false};

  Mutex mutex_;
  std::unique_ptr<DefaultsStore> store_ KESU_GUARDED_BY(mutex_);
  DefaultsCache::Newer newer_ KESU_GUARDED_BY(mutex_) = DefaultsCache::Newer::File;
  std::chrono::steady_clock::time_point lookAgainAt_ KESU_GUARDED_BY(mutex_);
  std::vector<std::function<void()>> waiting_ KESU_GUARDED_BY(mutex_);
  int tellers_ KESU_GUARDED_BY(mutex_) = 0;  // Threads that call those who waited: nothing is written meanwhile.
  std::uint64_t generation_ KESU_GUARDED_BY(mutex_) = 0;
  std::uint64_t checkpointedGeneration_ KESU_GUARDED_BY(mutex_) = 0;
  std::int64_t askAtJournalBytes_ KESU_GUARDED_BY(mutex_) = 0;
  DefaultsCache::Batch batch_ KESU_GUARDED_BY(mutex_);
  DefaultsWarnings warnings_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu
