#include "platform/linux/defaults/DefaultsFile.h"

#include <utility>
#include <vector>

#include "platform/ServiceLog.h"

namespace kesu {
namespace {

constexpr int kWarning = 2;

}  // namespace

DefaultsFile::DefaultsFile(DefaultsCache& cache, std::string directory, std::string fileName,
                           std::chrono::milliseconds retryPause)
    : cache_(cache),
      directory_(std::move(directory)),
      fileName_(std::move(fileName)),
      retryPause_(retryPause),
      store_(std::make_unique<DefaultsStore>(directory_, fileName_)) {}

DefaultsFile::~DefaultsFile() {
  if (isInForkedChild()) {
    static_cast<void>(store_.release());
  }
}

bool DefaultsFile::openOnce() {
  if (isInForkedChild()) {
    return false;
  }
  if (isOpened_.load(std::memory_order_acquire)) {
    return true;
  }
  {
    const MutexLock lock(mutex_);
    if (!isOpened_.load(std::memory_order_relaxed)) {
      open();
      isOpened_.store(true, std::memory_order_release);
    }
  }
  report();
  return true;
}

void DefaultsFile::whenLoaded(std::function<void()> done) {
  {
    const MutexLock lock(mutex_);
    waiting_.push_back(std::move(done));
  }
  tell();
}

void DefaultsFile::open() {
  if (directory_.empty()) {
    warnings_.add(Warning::Failure, "User defaults are kept in memory only: there is no home directory");
    isLoaded_.store(true, std::memory_order_release);
    return;
  }
  lookAgainAt_ = std::chrono::steady_clock::now() + retryPause_;
  DefaultsCache::Entries loaded;
  StoreStatus status = openStore(loaded);
  if (status == StoreStatus::Corrupt) {
    warnings_.add(Warning::Damage, "User defaults are damaged and start empty (" + store_->failureText() +
                                       "); the old file is renamed to " + fileName_ + ".corrupt");
    ++generation_;
    status = store_->setAside() ? openStore(loaded) : StoreStatus::Failed;
  }
  if (status != StoreStatus::Ok) {
    warnThatItCannotBeWritten();
  }
  if (store_->unreadableCount() > 0) {
    warnings_.add(Warning::Damage, std::to_string(store_->unreadableCount()) + " user defaults cannot be read");
  }
  if (status == StoreStatus::Ok || status == StoreStatus::ReadOnly) {
    cache_.load(std::move(loaded), std::exchange(newer_, DefaultsCache::Newer::Memory));
    isLoaded_.store(true, std::memory_order_release);
  }
}

// Opens a file that could not be opened before, or that has appeared where another one was.
void DefaultsFile::lookAgain() {
  if (store_->isOpen() && store_->isElsewhere()) {
    leaveStore();
  }
  if (!store_->isOpen()) {
    open();
  }
  lookAgainAt_ = std::chrono::steady_clock::now() + retryPause_;
}

// Another directory has taken the place of the store's own, as a late mount does. What is there is older than this run
// and the only one that the next run will see.
void DefaultsFile::leaveStore() {
  for (const std::string& key : cache_.unreadKeys()) {
    read(key);
  }
  cache_.dropUnread();
  cache_.markAllUnsaved();
  newer_ = DefaultsCache::Newer::File;
  ++generation_;
  store_ = std::make_unique<DefaultsStore>(directory_, fileName_);
}

StoreStatus DefaultsFile::openStore(DefaultsCache::Entries& loaded) {
  return store_->open([&loaded](std::string key, std::optional<Value> value) {
    DefaultsEntry& entry = loaded[std::move(key)];
    entry.isPresent = true;
    entry.isUnread = !value;
    if (value) {
      entry.fill(std::move(*value));
    }
  });
}

void DefaultsFile::readOnce(std::string_view key) {
  if (!cache_.isUnread(key)) {
    return;
  }
  {
    const MutexLock lock(mutex_);
    // Another thread may have read it while this one waited.
    const StoreStatus status = cache_.isUnread(key) ? read(key) : StoreStatus::Ok;
    if (status == StoreStatus::Corrupt) {
      settle(status);
    } else if (status != StoreStatus::Ok) {
      warnings_.add(Warning::Failure,
                    "User default " + std::string(key) + " cannot be read (" + store_->failureText() + ")");
    }
  }
  report();
}

StoreStatus DefaultsFile::read(std::string_view key) {
  std::optional<Value> value;
  const int unreadableCount = store_->unreadableCount();
  const StoreStatus status = store_->read(key, value);
  if (store_->unreadableCount() > unreadableCount) {
    warnings_.add(Warning::Damage, "User default " + std::string(key) + " cannot be read, or not all of it");
  }
  if (status == StoreStatus::Ok) {
    cache_.fill(key, std::move(value));
  }
  return status;
}

bool DefaultsFile::write(bool& wantsCheckpoint) {
  bool isWritten = false;
  bool reports = false;
  {
    const MutexLock lock(mutex_);
    if (std::chrono::steady_clock::now() >= lookAgainAt_) {
      lookAgain();
    }
    reports = hasNews();
  }
  if (reports) {  // What follows from the values that were read is written in the same transaction.
    report();
    tell();
  }
  {
    const MutexLock lock(mutex_);
    if (store_->isOpen() && waiting_.empty() && tellers_ == 0) {
      StoreStatus status = writePending();
      if (status == StoreStatus::Stale) {
        status = writePending();  // An array that another process has written since: now all of it, not parts.
      }
      isWritten = settle(status) == StoreStatus::Ok;
    }
    wantsCheckpoint = isWritten && journalHasGrown();
    reports = hasNews();
  }
  if (reports) {
    report();
  }
  return isWritten;
}

StoreStatus DefaultsFile::writePending() {
  cache_.collect(batch_);
  const StoreStatus status = batch_.changes.empty() ? StoreStatus::Ok : store_->write(batch_.changes);
  cache_.finish(batch_, status == StoreStatus::Ok);
  return status;
}

// What follows from the end of an operation: a store that was found damaged is replaced; anything but a file that
// another process has locked for the moment is worth a warning.
StoreStatus DefaultsFile::settle(StoreStatus status) {
  if (status == StoreStatus::Corrupt) {
    status = replaceStore();
  }
  if (status != StoreStatus::Ok && status != StoreStatus::Busy) {
    warnThatItCannotBeWritten();
  }
  return status;
}

StoreStatus DefaultsFile::replaceStore() {
  warnings_.add(Warning::Damage, "User defaults were damaged (" + store_->failureText() +
                                     ") and are written anew; the old file is renamed to " + fileName_ + ".corrupt");
  // What can still be read of what was left in the file comes into memory, the rest is lost.
  for (const std::string& key : cache_.unreadKeys()) {
    read(key);
  }
  cache_.dropUnread();
  cache_.markAllUnsaved();
  ++generation_;
  const auto ignore = [](const std::string&, const std::optional<Value>&) {};
  StoreStatus status = store_->setAside() ? store_->open(ignore) : StoreStatus::Failed;
  if (status == StoreStatus::Ok) {
    status = writePending();
  }
  return status;
}

void DefaultsFile::warnThatItCannotBeWritten() {
  warnings_.add(Warning::Failure, "User defaults cannot be written in " + directory_ + " (" + store_->failureText() +
                                      "); continuing in memory only");
}

bool DefaultsFile::journalHasGrown() {
  const bool hasGrown = store_->journalBytes() > askAtJournalBytes_;
  if (hasGrown) {
    askAtJournalBytes_ = store_->journalBytes() + kJournalLimitBytes;
  }
  return hasGrown;
}

std::optional<DefaultsFile::Checkpoint> DefaultsFile::beginCheckpoint(DefaultsCheckpointer& checkpointer) {
  const MutexLock lock(mutex_);
  if (!store_->isOpen()) {
    checkpointer.close();
  }
  lookAgain();
  if (!store_->isOpen()) {
    return std::nullopt;
  }
  if (std::exchange(checkpointedGeneration_, generation_) != generation_) {
    checkpointer.close();
  }
  store_->shareJournal();
  return Checkpoint{store_->path(), generation_, store_->commitCount(), store_->isUnchecked()};
}

bool DefaultsFile::noteChecked(const Checkpoint& checkpoint, bool isDamaged) {
  const MutexLock lock(mutex_);
  if (checkpoint.generation == generation_) {
    settle(store_->noteChecked(isDamaged));
  }
  return checkpoint.generation == generation_;
}

bool DefaultsFile::finishCheckpoint(const Checkpoint& checkpoint, bool isMoved, DefaultsCheckpointer& checkpointer) {
  const MutexLock lock(mutex_);
  if (checkpoint.generation != generation_) {
    return true;
  }
  const bool isQuiet = isMoved && store_->commitCount() == checkpoint.commits;
  if (!isQuiet && store_->journalBytes() <= kJournalCeilingBytes) {
    return false;
  }
  store_->releaseJournal();
  if (checkpointer.emptyJournal(checkpoint.path)) {
    store_->noteJournalEmptied();
    askAtJournalBytes_ = kJournalLimitBytes;
  }
  return true;
}

bool DefaultsFile::hasNews() const {
  return warnings_.hasLines() || (isLoaded() && !waiting_.empty());
}

void DefaultsFile::report() {
  std::vector<std::string> lines;
  {
    const MutexLock lock(mutex_);
    lines = warnings_.takeLines();
  }
  for (const std::string& line : lines) {
    serviceLog(kWarning, line);
  }
}

void DefaultsFile::tell() {
  std::vector<std::function<void()>> waiting;
  {
    const MutexLock lock(mutex_);
    if (!isLoaded() || waiting_.empty()) {
      return;
    }
    waiting.swap(waiting_);
    ++tellers_;
  }
  for (const std::function<void()>& done : waiting) {
    done();
  }
  const MutexLock lock(mutex_);
  --tellers_;
}

}  // namespace kesu
