#include "platform/linux/LinuxUserDefaults.h"

#include <unistd.h>

#include <algorithm>
#include <bit>
#include <span>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/ServiceLog.h"

namespace kesu {
namespace {

constexpr int kWarning = 2;
constexpr int kCheckpointPasses = 3;

bool isContainer(const Value& value) {
  return value.array() != nullptr || value.dictionary() != nullptr;
}

// Long enough to be written in parts.
bool isLongArray(const Value& value) {
  constexpr std::size_t kShortest = 4 * DefaultsStore::kPartElements;
  return value.array() != nullptr && value.array()->size() >= kShortest;
}

std::size_t partCount(const Array& array) {
  return (array.size() + DefaultsStore::kPartElements - 1) / DefaultsStore::kPartElements;
}

std::span<const Value> part(const Array& array, std::size_t place) {
  const std::size_t begin = std::min(place * DefaultsStore::kPartElements, array.size());
  return {array.data() + begin, std::min(DefaultsStore::kPartElements, array.size() - begin)};
}

// Adds the property lists of the parts that `former` (null: nothing) does not have in their place. False when one
// cannot be a property list.
bool addParts(const Array& array, const Array* former, std::map<std::size_t, std::string>& parts) {
  for (std::size_t place = 0; place < partCount(array); ++place) {
    const std::span<const Value> elements = part(array, place);
    if (former != nullptr && std::ranges::equal(elements, part(*former, place))) {
      continue;
    }
    std::optional<std::string> list = writePropertyList(Array(elements.begin(), elements.end()));
    if (!list) {
      return false;
    }
    parts.insert_or_assign(place, std::move(*list));
  }
  return true;
}

// Equal, and for reals the same bits: -0.0 replaces 0.0.
bool isSame(const Value& left, const Value& right) {
  const double* leftReal = left.real();
  const double* rightReal = right.real();
  if (leftReal != nullptr && rightReal != nullptr) {
    return std::bit_cast<std::uint64_t>(*leftReal) == std::bit_cast<std::uint64_t>(*rightReal);
  }
  return left == right;
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
  std::vector<std::pair<std::string, Value>> loaded;
  const auto load = [&](std::string key, Value value) { loaded.emplace_back(std::move(key), std::move(value)); };
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
  for (auto& [key, value] : loaded) {
    const auto [entry, isNew] = entries_.try_emplace(std::move(key));
    if (isNew) {  // What was changed in memory before the file could be opened is newer.
      Entry& loadedEntry = entry->second;
      loadedEntry.isPresent = true;
      loadedEntry.isText = value.text() != nullptr;
      loadedEntry.text = loadedEntry.isText ? *value.text() : std::string();
      loadedEntry.savedSize = loadedEntry.text.size();
      loadedEntry.value = loadedEntry.isText ? Value() : std::move(value);
    }
  }
}

std::optional<Value> LinuxUserDefaults::get(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  const auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isPresent) {
    return std::nullopt;
  }
  const Entry& entry = found->second;
  return entry.isText ? Value(entry.text) : entry.value;
}

bool LinuxUserDefaults::contains(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.isPresent;
}

bool LinuxUserDefaults::holds(std::string_view key, const Value& value) {
  const auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isPresent) {
    return false;
  }
  const Entry& entry = found->second;
  const std::string* text = value.text();
  return entry.isText ? text != nullptr && *text == entry.text : isSame(entry.value, value);
}

bool LinuxUserDefaults::set(std::string_view key, Value value) {
  openOnce();
  if (isLongArray(value)) {
    return setInParts(key, std::move(value));
  }
  {
    const MutexLock lock(stateMutex_);
    if (holds(key, value)) {
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
  Entry& entry = slot->second;
  entry.isPresent = true;
  entry.isText = value.text() != nullptr;
  entry.text = entry.isText ? *value.text() : std::string();
  entry.value = entry.isText ? Value() : std::move(value);
  entry.list = std::move(*list);
  return true;
}

// What is compared with must not change until the new array has taken its place: hence one lock for all of it.
bool LinuxUserDefaults::setInParts(std::string_view key, Value value) {
  const Array& array = *value.array();
  const MutexLock lock(stateMutex_);
  auto slot = entries_.find(key);
  const bool isLong = slot != entries_.end() && slot->second.isPresent && isLongArray(slot->second.value);
  const Array* former = isLong ? slot->second.value.array() : nullptr;
  std::map<std::size_t, std::string> parts;
  if (!addParts(array, former, parts)) {
    return false;
  }
  if (isLong && parts.empty() && former->size() == array.size()) {
    return true;
  }
  if (isLong) {
    mark(slot, Unsaved::Parts);
  } else {
    slot = entries_.try_emplace(std::string(key)).first;
    clear(slot);
  }
  Entry& entry = slot->second;
  entry.isPresent = true;
  parts.merge(entry.parts);
  entry.parts = std::move(parts);
  entry.parts.erase(entry.parts.lower_bound(partCount(array)), entry.parts.end());
  entry.value = std::move(value);
  return true;
}

void LinuxUserDefaults::remove(std::string_view key) {
  openOnce();
  const MutexLock lock(stateMutex_);
  const auto found = entries_.find(key);
  if (found != entries_.end() && found->second.isPresent) {
    clear(found);
  }
}

void LinuxUserDefaults::appendString(std::string_view key, std::string_view suffix) {
  openOnce();
  const MutexLock lock(stateMutex_);
  auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isPresent || !found->second.isText) {
    found = entries_.try_emplace(std::string(key)).first;
    clear(found);
    found->second.isPresent = true;
    found->second.isText = true;
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
  std::vector<std::string> keys;
  for (const auto& [key, entry] : entries_) {
    if (entry.isPresent) {
      keys.push_back(key);
    }
  }
  return keys;
}

// Empties an entry and notes that the file does not know yet.
void LinuxUserDefaults::clear(Entries::iterator entry) {
  mark(entry, Unsaved::All);
  Entry empty;
  empty.unsaved = entry->second.unsaved;
  entry->second = std::move(empty);
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
  if (status == StoreStatus::Corrupt) {
    status = replaceStore();
  }
  if (status != StoreStatus::Ok && status != StoreStatus::Busy) {
    warnOnce(warnedOfFailure_, "User defaults cannot be written in " + directory_ + " (" + store_->failureText() +
                                   "); they go on in memory");
  }
  return status == StoreStatus::Ok;
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
  ++storeGeneration_;
  StoreStatus status = store_->setAside() ? store_->open([](const std::string&, const Value&) {}) : StoreStatus::Failed;
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
    StoreChange& change = changes_.emplace_back();
    change.key = slot->first;  // Stays valid: entries go only in dropRemoved(), when the change is done.
    if (entry.unsaved == Unsaved::Suffix) {
      change.kind = StoreChange::Kind::Append;
      change.text = entry.text.substr(entry.savedSize);
    } else if (entry.isPresent && isLongArray(entry.value)) {
      change.kind = StoreChange::Kind::PutParts;
      change.isWhole = entry.unsaved == Unsaved::All;
      change.partCount = partCount(*entry.value.array());
      change.parts = std::exchange(entry.parts, {});
      if (change.isWhole && change.parts.size() < change.partCount) {
        addParts(*entry.value.array(), nullptr, change.parts);
      }
    } else if (entry.isPresent) {
      change.kind = StoreChange::Kind::Put;
      change.value = entry.isText ? Value(entry.text) : entry.value;
      change.text = std::exchange(entry.list, {});
    } else {
      change.kind = StoreChange::Kind::Remove;
    }
    entry.savedSize = entry.text.size();
    entry.unsaved = Unsaved::Nothing;
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
