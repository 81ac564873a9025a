#pragma once

#include <kesu/platform/UserDefaults.h>
#include <sys/types.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/defaults/DefaultsCheckpointer.h"
#include "platform/linux/defaults/DefaultsEntry.h"
#include "platform/linux/defaults/DefaultsStore.h"

namespace kesu {

/// User defaults in a file, with all values in memory that were asked for.
///
/// The file is opened by the first operation, not by the constructor. Opening reads the keys and all values but arrays
/// and dictionaries, so that a full inbox costs a start nothing. Such a value is read by the first get() of its key or
/// by the set() of another one, and stays in memory. What synchronize() has returned true for survives the death of the
/// process; after power loss the file is whole and at least as new as the last checkpoint().
///
/// Failures: a file that cannot be opened or written leaves the values in memory, and synchronize() answers false and
/// tries again the next time (opening is tried again by checkpoint()). A damaged file is renamed to "<name>.corrupt"
/// and replaced: by an empty one when it is found at opening, by what is in memory and what can still be read when it
/// is found later. A large file is looked through for damage by the first checkpoint() only. An array or dictionary
/// that makes no sense is absent from its first get() on, and an array in parts comes without the parts that make none.
/// Each kind of failure is logged once (level 2).
///
/// A long array costs by what is different from the one before: set() compares, and synchronize() writes the parts that
/// are others.
///
/// Two processes can share the file: of two values written under one key the later stays. Neither sees what the other
/// writes after opening, except in an array or dictionary that it has not read yet. A process forked from the one that
/// made this object reads and changes its own copy in memory, without the arrays and dictionaries that were not read
/// before, and writes nothing.
class LinuxUserDefaults final : public UserDefaults {
 public:
  /// A journal of this size asks for a checkpoint. It is read again at the next start after the process was killed.
  static constexpr std::int64_t kJournalLimitBytes = std::int64_t{256} << 10;

  /// A journal of this size is emptied even if writers have to wait for the disk.
  static constexpr std::int64_t kJournalCeilingBytes = std::int64_t{32} << 20;

  /// `preferencesDirectory` is made when it is missing; empty means that nothing is kept on disk.
  explicit LinuxUserDefaults(std::string preferencesDirectory, std::string fileName = "kesu.defaults");

  /// Closes the file. What was not synchronized is lost.
  ~LinuxUserDefaults() override;

  LinuxUserDefaults(const LinuxUserDefaults&) = delete;
  LinuxUserDefaults& operator=(const LinuxUserDefaults&) = delete;

  /// Names what asks for a checkpoint(): called by synchronize(), on its caller's thread and without a lock held, by
  /// the first one that writes and then whenever the journal has grown by kJournalLimitBytes. Set it before the first
  /// use.
  void onCheckpointWanted(std::function<void()> ask) { askForCheckpoint_ = std::move(ask); }

  std::optional<Value> get(std::string_view key) override;
  bool contains(std::string_view key) override;
  bool set(std::string_view key, Value value) override;
  void remove(std::string_view key) override;
  void appendString(std::string_view key, std::string_view suffix) override;
  std::optional<std::string> takeString(std::string_view key) override;
  std::vector<std::string> keys() override;
  bool synchronize() override;
  void checkpoint() override;

 private:
  using Entry = DefaultsEntry;
  using Unsaved = DefaultsEntry::Unsaved;
  using Entries = std::map<std::string, Entry, std::less<>>;

  /// A change on its way to the file, with what is needed to take it back.
  struct Pending {
    Entries::iterator entry;
    Unsaved unsaved;
    std::size_t savedSize;
  };

  bool isForked() const;
  void openOnce() KESU_EXCLUDES(storeMutex_, stateMutex_);
  void open() KESU_REQUIRES(storeMutex_);
  bool isUnread(std::string_view key) KESU_EXCLUDES(stateMutex_);
  void readOnce(std::string_view key) KESU_EXCLUDES(storeMutex_, stateMutex_);
  StoreStatus read(std::string_view key) KESU_REQUIRES(storeMutex_) KESU_EXCLUDES(stateMutex_);
  void readRest() KESU_REQUIRES(storeMutex_) KESU_EXCLUDES(stateMutex_);
  std::vector<std::string> keysWith(bool Entry::*flag) const KESU_REQUIRES(stateMutex_);
  const Entry* find(std::string_view key) const KESU_REQUIRES(stateMutex_);
  bool hasUnsaved() KESU_EXCLUDES(stateMutex_);
  bool write() KESU_REQUIRES(storeMutex_);
  StoreStatus writePending() KESU_REQUIRES(storeMutex_);
  StoreStatus settle(StoreStatus status) KESU_REQUIRES(storeMutex_);
  StoreStatus replaceStore() KESU_REQUIRES(storeMutex_);
  bool wantsCheckpoint() KESU_REQUIRES(storeMutex_);
  bool checkpointOnce() KESU_REQUIRES(checkpointMutex_);
  bool checkStore(const std::string& path, std::uint64_t generation) KESU_REQUIRES(checkpointMutex_);
  void warnOnce(bool& warned, const std::string& text) KESU_REQUIRES(storeMutex_);
  void logWarnings() KESU_EXCLUDES(storeMutex_);

  bool setInParts(std::string_view key, Value value) KESU_EXCLUDES(stateMutex_);
  void mark(Entries::iterator entry, Unsaved unsaved) KESU_REQUIRES(stateMutex_);
  void clear(Entries::iterator entry) KESU_REQUIRES(stateMutex_);
  void collect() KESU_REQUIRES(storeMutex_, stateMutex_);
  void giveBack() KESU_REQUIRES(storeMutex_, stateMutex_);
  void dropRemoved() KESU_REQUIRES(storeMutex_, stateMutex_);

  const std::string directory_;
  const std::string fileName_;
  const pid_t pid_;
  std::function<void()> askForCheckpoint_;
  std::atomic<bool> isOpened_{false};

  // Locked in this order. Readers and setters need the last only, which is never held while the file is used.
  Mutex checkpointMutex_;
  Mutex storeMutex_;
  Mutex stateMutex_;

  DefaultsCheckpointer checkpointer_ KESU_GUARDED_BY(checkpointMutex_);
  std::uint64_t checkpointedGeneration_ KESU_GUARDED_BY(checkpointMutex_) = 0;
  std::unique_ptr<DefaultsStore> store_ KESU_GUARDED_BY(storeMutex_);
  std::uint64_t storeGeneration_ KESU_GUARDED_BY(storeMutex_) = 0;
  std::vector<Pending> pending_ KESU_GUARDED_BY(storeMutex_);
  std::vector<StoreChange> changes_ KESU_GUARDED_BY(storeMutex_);
  std::int64_t askAtJournalBytes_ KESU_GUARDED_BY(storeMutex_) = 0;
  bool warnedOfFailure_ KESU_GUARDED_BY(storeMutex_) = false;
  std::vector<std::string> warnings_ KESU_GUARDED_BY(storeMutex_);
  bool warnedOfDamage_ KESU_GUARDED_BY(storeMutex_) = false;

  Entries entries_ KESU_GUARDED_BY(stateMutex_);
  std::vector<Entries::iterator> unsaved_ KESU_GUARDED_BY(stateMutex_);
};

}  // namespace kesu
