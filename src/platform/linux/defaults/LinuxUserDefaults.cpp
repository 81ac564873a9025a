#include "platform/linux/defaults/LinuxUserDefaults.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/ServiceLog.h"
#include "platform/linux/defaults/ArrayParts.h"

namespace kesu {
namespace {

constexpr int kWarning = 2;
constexpr int kCheckpointPasses = 3;

bool isContainer(const Value& value) {
  return value.array() != nullptr || value.dictionary() != nullptr;
}

}  // namespace

LinuxUserDefaults::LinuxUserDefaults(std::string preferencesDirectory, std::string fileName)
    : directory_(std::move(preferencesDirectory)),
      fileName_(std::move(fileName)),
      pid_(::getpid()),
      store_(std::make_unique<DefaultsStore>(directory_, fileName_)) {}

LinuxUserDefaults::~LinuxUserDefaults() {
  if (isForked()) {
    // Closing would let go of locks and remove files that the parent process uses.
    static_cast<void>(store_.release());
    checkpointer_.abandon();
  }
}

bool LinuxUserDefaults::isForked() const {
  return ::getpid() != pid_;
}

void LinuxUserDefaults::openOnce() {
  if (isOpened_.load(std::memory_order_acquire)) {
    return;
  }
  {
    const MutexLock lock(storeMutex_);
    if (!isOpened_.load(std::memory_order_relaxed)) {
      if (!isForked()) {
        open();
      }
      isOpened_.store(true, std::memory_order_release);
    }
  }
  logWarnings();
}

void LinuxUserDefaults::open() {
  if (directory_.empty()) {
    warnOnce(warnedOfFailure_, "User defaults are kept in memory only: there is no home directory");
    return;
  }
  Entries loaded;
  const auto load = [&loaded](std::string key, std::optional<Value> value) {
    Entry& entry = loaded[std::move(key)];
    entry.isPresent = true;
    entry.isUnread = !value;
    if (value) {
      entry.fill(std::move(*value));
    }
  };
  StoreStatus status = store_->open(load);
  if (status == StoreStatus::Corrupt) {
    warnOnce(warnedOfDamage_, "User defaults are damaged and start empty (" + store_->failureText() +
                                  "); the old file is renamed to " + fileName_ + ".corrupt");
    ++storeGeneration_;
    status = store_->setAside() ? store_->open(load) : StoreStatus::Failed;
  }
  if (status != StoreStatus::Ok) {
    warnOnce(warnedOfFailure_, "User defaults cannot be written in " + directory_ + " (" + store_->failureText() +
                                   "); they go on in memory");
  }
  if (store_->unreadableCount() > 0) {
    warnOnce(warnedOfDamage_, std::to_string(store_->unreadableCount()) + " user defaults cannot be read");
  }
  const MutexLock lock(stateMutex_);
  entries_.merge(loaded);  // What was changed in memory before the file could be opened is newer.
}

bool LinuxUserDefaults::isUnread(std::string_view key) {
  const MutexLock lock(stateMutex_);
  const Entry* entry = find(key);
  return entry != nullptr && entry->isUnread;
}

// Reads a value that was left in the file.
void LinuxUserDefaults::readOnce(std::string_view key) {
  if (!isUnread(key) || isForked()) {
    return;
  }
  {
    const MutexLock lock(storeMutex_);
    const StoreStatus status = isUnread(key) ? read(key) : StoreStatus::Ok;
    if (status == StoreStatus::Corrupt) {
      settle(status);
    } else if (status != StoreStatus::Ok) {
      warnOnce(warnedOfFailure_,
               "User default " + std::string(key) + " cannot be read (" + store_->failureText() + ")");
    }
  }
  logWarnings();
}

StoreStatus LinuxUserDefaults::read(std::string_view key) {
  std::optional<Value> value;
  const int unreadableCount = store_->unreadableCount();
  const StoreStatus status = store_->read(key, value);
  if (store_->unreadableCount() > unreadableCount) {
    warnOnce(warnedOfDamage_, "User default " + std::string(key) + " cannot be read, or not all of it");
  }
  const MutexLock lock(stateMutex_);
  const auto found = entries_.find(key);
  if (status != StoreStatus::Ok || found == entries_.end() || !found->second.isUnread) {
    return status;
  }
  if (value) {
    found->second.fill(std::move(*value));
  } else {
    entries_.erase(found);
  }
  return status;
}

// Before the file goes: what can still be read of what was left in it comes into memory, the rest is lost.
void LinuxUserDefaults::readRest() {
  const auto unread = [this]() {
    const MutexLock lock(stateMutex_);
    return keysWith(&Entry::isUnread);
  };
  for (const std::string& key : unread()) {
    read(key);
  }
  const MutexLock lock(stateMutex_);
  std::erase_if(entries_, [](const auto& each) { return each.second.isUnread; });
}

// The entry of a key that holds a value.
const LinuxUserDefaults::Entry* LinuxUserDefaults::find(std::string_view key) const {
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.isPresent ? &found->second : nullptr;
}

std::optional<Value> LinuxUserDefaults::get(std::string_view key) {
  openOnce();
  {
    const MutexLock lock(stateMutex_);
    const Entry* entry = find(key);
    if (entry == nullptr || !entry->isUnread) {
      return entry != nullptr ? entry->copy() : std::nullopt;
    }
  }
  readOnce(key);
  const MutexLock lock(stateMutex_);
  const Entry* entry = find(key);
  return entry != nullptr ? entry->copy() : std::nullopt;
}

bool LinuxUserDefaults::contains(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  return find(key) != nullptr;
}

bool LinuxUserDefaults::set(std::string_view key, Value value) {
  openOnce();
  if (isContainer(value)) {
    readOnce(key);  // To be compared with.
  }
  if (isLongArray(value)) {
    return setInParts(key, std::move(value));
  }
  {
    const MutexLock lock(stateMutex_);
    const Entry* entry = find(key);
    if (entry != nullptr && entry->holds(value)) {
      return true;
    }
  }
  std::optional<std::string> list = isContainer(value) ? writePropertyList(value) : std::string();
  if (value.isNull() || !list) {
    return false;
  }
  const MutexLock lock(stateMutex_);
  const auto slot = entries_.try_emplace(std::string(key)).first;
  clear(slot);
  slot->second.put(std::move(value), std::move(*list));
  return true;
}

// What is compared with must not change until the new array has taken its place: hence one lock for all of it.
bool LinuxUserDefaults::setInParts(std::string_view key, Value value) {
  const Array& array = *value.array();
  const MutexLock lock(stateMutex_);
  auto slot = entries_.find(key);
  const bool isLong = slot != entries_.end() && slot->second.isPresent && isLongArray(slot->second.value);
  const Array* former = isLong ? slot->second.value.array() : nullptr;
  std::optional<ArrayParts> parts = changedParts(array, former);
  if (!parts) {
    return false;
  }
  if (isLong && parts->empty() && former->size() == array.size()) {
    return true;
  }
  if (isLong) {
    mark(slot, Unsaved::Parts);
  } else {
    slot = entries_.try_emplace(std::string(key)).first;
    clear(slot);
  }
  slot->second.putParts(std::move(value), std::move(*parts));
  return true;
}

void LinuxUserDefaults::remove(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  if (find(key) != nullptr) {
    clear(entries_.find(key));
  }
}

void LinuxUserDefaults::appendString(std::string_view key, std::string_view suffix) {
  openOnce();
  const MutexLock lock(stateMutex_);
  auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isPresent || !found->second.isText) {
    found = entries_.try_emplace(std::string(key)).first;
    clear(found);
    found->second.put("", {});
  }
  if (!suffix.empty()) {
    found->second.text.append(suffix);
    mark(found, Unsaved::Suffix);
  }
}

std::optional<std::string> LinuxUserDefaults::takeString(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  const auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isPresent || !found->second.isText) {
    return std::nullopt;
  }
  std::string text = std::move(found->second.text);
  clear(found);
  return text;
}

std::vector<std::string> LinuxUserDefaults::keys() {
  openOnce();
  const MutexLock lock(stateMutex_);
  return keysWith(&Entry::isPresent);
}

std::vector<std::string> LinuxUserDefaults::keysWith(bool Entry::*flag) const {
  std::vector<std::string> keys;
  for (const auto& [key, entry] : entries_) {
    if (entry.*flag) {
      keys.push_back(key);
    }
  }
  return keys;
}

// Empties an entry and notes that the file does not know yet.
void LinuxUserDefaults::clear(Entries::iterator entry) {
  mark(entry, Unsaved::All);
  entry->second.empty();
}

void LinuxUserDefaults::mark(Entries::iterator entry, Unsaved unsaved) {
  Unsaved& present = entry->second.unsaved;
  if (present == Unsaved::Nothing) {
    unsaved_.push_back(entry);
  }
  present = std::max(present, unsaved);
}

bool LinuxUserDefaults::hasUnsaved() {
  const MutexLock lock(stateMutex_);
  return !unsaved_.empty();
}

bool LinuxUserDefaults::synchronize() {
  if (!hasUnsaved()) {
    return true;
  }
  if (isForked()) {
    return false;
  }
  bool written = false;
  bool ask = false;
  bool warned = false;
  {
    const MutexLock lock(storeMutex_);
    written = store_->isOpen() && write();
    ask = written && wantsCheckpoint();
    warned = !warnings_.empty();
  }
  if (ask && askForCheckpoint_) {
    askForCheckpoint_();
  }
  if (warned) {
    logWarnings();
  }
  return written;
}

bool LinuxUserDefaults::write() {
  StoreStatus status = writePending();
  if (status == StoreStatus::Stale) {
    status = writePending();
  }
  return settle(status) == StoreStatus::Ok;
}

// Replaces a store that was found damaged. Warns of what is left to be warned of.
StoreStatus LinuxUserDefaults::settle(StoreStatus status) {
  if (status == StoreStatus::Corrupt) {
    status = replaceStore();
  }
  if (status != StoreStatus::Ok && status != StoreStatus::Busy) {
    warnOnce(warnedOfFailure_, "User defaults cannot be written in " + directory_ + " (" + store_->failureText() +
                                   "); they go on in memory");
  }
  return status;
}

StoreStatus LinuxUserDefaults::writePending() {
  {
    const MutexLock lock(stateMutex_);
    collect();
  }
  const StoreStatus status = changes_.empty() ? StoreStatus::Ok : store_->write(changes_);
  const MutexLock lock(stateMutex_);
  if (status == StoreStatus::Ok) {
    dropRemoved();
  } else {
    giveBack();
  }
  pending_.clear();
  changes_.clear();
  return status;
}

StoreStatus LinuxUserDefaults::replaceStore() {
  warnOnce(warnedOfDamage_, "User defaults were damaged (" + store_->failureText() +
                                ") and are written anew; the old file is renamed to " + fileName_ + ".corrupt");
  readRest();
  ++storeGeneration_;
  const auto ignore = [](const std::string&, const std::optional<Value>&) {};
  StoreStatus status = store_->setAside() ? store_->open(ignore) : StoreStatus::Failed;
  if (status == StoreStatus::Ok) {
    {
      const MutexLock lock(stateMutex_);
      for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
        mark(entry, Unsaved::All);
      }
    }
    status = writePending();
  }
  return status;
}

void LinuxUserDefaults::collect() {
  for (const Entries::iterator& slot : unsaved_) {
    Entry& entry = slot->second;
    pending_.push_back({slot, entry.unsaved, entry.savedSize});
    // The key stays valid: entries go only in dropRemoved(), when the change is done.
    changes_.push_back(entry.takeChange(slot->first));
  }
  unsaved_.clear();
}

// The file has taken nothing. Entries may have changed further since they were collected.
void LinuxUserDefaults::giveBack() {
  for (const Pending& pending : pending_) {
    Entry& entry = pending.entry->second;
    if (entry.unsaved != Unsaved::All) {
      entry.savedSize = pending.savedSize;
    }
    // The property lists of parts are gone by now; an array that was to be changed in parts is written whole.
    mark(pending.entry, pending.unsaved == Unsaved::Parts ? Unsaved::All : pending.unsaved);
  }
}

void LinuxUserDefaults::dropRemoved() {
  for (const Pending& pending : pending_) {
    const Entry& entry = pending.entry->second;
    if (!entry.isPresent && entry.unsaved == Unsaved::Nothing) {
      entries_.erase(pending.entry);
    }
  }
}

bool LinuxUserDefaults::wantsCheckpoint() {
  const bool wants = store_->journalBytes() > askAtJournalBytes_;
  if (wants) {
    askAtJournalBytes_ = store_->journalBytes() + kJournalLimitBytes;
  }
  return wants;
}

void LinuxUserDefaults::checkpoint() {
  if (isForked()) {
    return;
  }
  openOnce();
  {
    const MutexLock lock(checkpointMutex_);
    for (int pass = 0; pass < kCheckpointPasses && !checkpointOnce(); ++pass) {
    }
  }
  logWarnings();
}

// True when nothing is left to do. The slow part, which waits for the disk, holds no lock that others need.
bool LinuxUserDefaults::checkpointOnce() {
  std::uint64_t generation = 0;
  std::uint64_t commits = 0;
  std::string path;
  bool isUnchecked = false;
  {
    const MutexLock lock(storeMutex_);
    if (!store_->isOpen()) {
      checkpointer_.close();
      open();
    }
    if (!store_->isOpen()) {
      return true;
    }
    if (std::exchange(checkpointedGeneration_, storeGeneration_) != storeGeneration_) {
      checkpointer_.close();
    }
    store_->shareJournal();
    generation = storeGeneration_;
    commits = store_->commitCount();
    path = store_->path();
    isUnchecked = store_->isUnchecked();
  }
  if (isUnchecked && !checkStore(path, generation)) {
    return false;
  }
  const bool moved = checkpointer_.moveJournal(path);
  const MutexLock lock(storeMutex_);
  if (generation != storeGeneration_) {
    return true;
  }
  const bool isQuiet = moved && store_->commitCount() == commits;
  if (!isQuiet && store_->journalBytes() <= kJournalCeilingBytes) {
    return false;
  }
  store_->releaseJournal();
  if (checkpointer_.emptyJournal(path)) {
    store_->noteJournalEmptied();
    askAtJournalBytes_ = kJournalLimitBytes;
  }
  return true;
}

// Looks a large file through for damage, for which opening has no time. False when the store was replaced.
bool LinuxUserDefaults::checkStore(const std::string& path, std::uint64_t generation) {
  const bool isDamaged = checkpointer_.findsDamage(path);
  const MutexLock lock(storeMutex_);
  if (generation != storeGeneration_) {
    return false;
  }
  settle(store_->noteChecked(isDamaged));
  return generation == storeGeneration_;
}

void LinuxUserDefaults::warnOnce(bool& warned, const std::string& text) {
  if (!std::exchange(warned, true)) {
    warnings_.push_back(text);
  }
}

// Without a lock held: the host's log sink may come back and ask for a value.
void LinuxUserDefaults::logWarnings() {
  std::vector<std::string> warnings;
  {
    const MutexLock lock(storeMutex_);
    warnings.swap(warnings_);
  }
  for (const std::string& warning : warnings) {
    serviceLog(kWarning, warning);
  }
}

}  // namespace kesu
