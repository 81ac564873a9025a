#include "platform/linux/defaults/DefaultsCache.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "foundation/PropertyList.h"
#include "platform/linux/defaults/ArrayParts.h"
#include "platform/linux/defaults/StoredValue.h"

namespace kesu {
namespace {

// The property list of a value that needs one; nothing when it cannot be one.
std::optional<std::string> propertyList(const Value& value) {
  return isContainer(value) && !isLongArray(value) ? writePropertyList(value, PropertyListForm::Escaped)
                                                   : std::string();
}

}  // namespace

std::optional<Value> DefaultsCache::get(std::string_view key) {
  const MutexLock lock(mutex_);
  const DefaultsEntry* entry = find(key);
  return entry != nullptr ? entry->copy() : std::nullopt;
}

bool DefaultsCache::contains(std::string_view key) {
  const MutexLock lock(mutex_);
  return find(key) != nullptr;
}

bool DefaultsCache::isUnread(std::string_view key) {
  const MutexLock lock(mutex_);
  const DefaultsEntry* entry = find(key);
  return entry != nullptr && entry->isUnread;
}

bool DefaultsCache::set(std::string_view key, Value value) {
  if (isContainer(value) && !isLongArray(value)) {
    const MutexLock lock(mutex_);
    const DefaultsEntry* entry = find(key);
    if (entry != nullptr && entry->equals(value)) {
      return true;
    }
  }
  // Without the lock: other threads must not wait while a whole inbox is put into words.
  std::optional<std::string> list = propertyList(value);
  const MutexLock lock(mutex_);
  return put(key, std::move(value), std::move(list));
}

void DefaultsCache::apply(std::span<const DefaultsChange> changes) {
  std::vector<std::optional<std::string>> lists;  // One per change, if one of them needs it.
  if (std::ranges::any_of(changes, [](const DefaultsChange& change) { return isContainer(change.value); })) {
    std::ranges::transform(changes, std::back_inserter(lists),
                           [](const DefaultsChange& change) { return propertyList(change.value); });
  }
  const MutexLock lock(mutex_);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const DefaultsChange& change = changes[i];
    switch (change.kind) {
      case DefaultsChange::Kind::Set:
        put(change.key, change.value, lists.empty() ? std::string() : std::move(lists[i]));
        break;
      case DefaultsChange::Kind::Append:
        grow(change.key, change.suffix);
        break;
      case DefaultsChange::Kind::Remove:
        erase(change.key);
        break;
      case DefaultsChange::Kind::Raise:
        raise(change.key, change.value);
        break;
    }
  }
}

bool DefaultsCache::put(std::string_view key, Value value, std::optional<std::string> list) {
  if (isLongArray(value)) {
    return putInParts(key, std::move(value));
  }
  const auto slot = entries_.find(key);
  if (slot != entries_.end() && slot->second.isPresent && slot->second.equals(value)) {
    return true;
  }
  if (value.isNull() || !list) {
    return false;
  }
  clear(key, slot)->second.put(std::move(value), std::move(*list));
  return true;
}

// What is compared with must not change until the new array has taken its place: hence one lock for all of it.
bool DefaultsCache::putInParts(std::string_view key, Value value) {
  const Array& array = *value.array();
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
    slot = clear(key, slot);
  }
  slot->second.putParts(std::move(value), std::move(*parts));
  return true;
}

void DefaultsCache::remove(std::string_view key) {
  const MutexLock lock(mutex_);
  erase(key);
}

void DefaultsCache::erase(std::string_view key) {
  const auto slot = entries_.find(key);
  if (slot != entries_.end() && slot->second.isPresent) {
    clear(key, slot);
  }
}

void DefaultsCache::raise(std::string_view key, const Value& value) {
  const auto slot = entries_.find(key);
  if (slot == entries_.end() || !slot->second.isPresent || !slot->second.isAtLeast(value)) {
    put(key, value, std::string());
    entries_.find(key)->second.isRaised = true;
  }
}

void DefaultsCache::grow(std::string_view key, std::string_view suffix) {
  auto entry = findText(key);
  if (entry == entries_.end()) {
    entry = clear(key, entries_.find(key));
    entry->second.put("", {});
  }
  if (!suffix.empty()) {
    entry->second.text.append(suffix);
    entry->second.grownSize += suffix.size();
    mark(entry, Unsaved::Suffix);
  }
}

std::vector<std::string> DefaultsCache::keys() {
  return keysWith(&DefaultsEntry::isPresent);
}

std::vector<std::string> DefaultsCache::unreadKeys() {
  return keysWith(&DefaultsEntry::isUnread);
}

std::vector<std::string> DefaultsCache::keysWith(bool DefaultsEntry::*flag) {
  const MutexLock lock(mutex_);
  std::vector<std::string> keys;
  for (const auto& [key, entry] : entries_) {
    if (entry.*flag) {
      keys.push_back(key);
    }
  }
  return keys;
}

void DefaultsCache::load(Entries saved, Newer newer) {
  const MutexLock lock(mutex_);
  entries_.merge(saved);  // Leaves those keys in `saved` that are here already.
  if (newer == Newer::File) {
    for (auto& [key, entry] : saved) {
      entries_.find(key)->second.moveOnto(std::move(entry));
    }
    std::erase_if(unsaved_, [](const Entries::iterator& slot) { return slot->second.unsaved == Unsaved::Nothing; });
  }
}

void DefaultsCache::fill(std::string_view key, std::optional<Value> value) {
  const MutexLock lock(mutex_);
  const auto found = entries_.find(key);
  if (found == entries_.end() || !found->second.isUnread) {
    return;
  }
  if (value) {
    found->second.fill(std::move(*value));
  } else {
    entries_.erase(found);
  }
}

void DefaultsCache::dropUnread() {
  const MutexLock lock(mutex_);
  std::erase_if(entries_, [](const auto& each) { return each.second.isUnread; });
}

void DefaultsCache::markAllUnsaved() {
  const MutexLock lock(mutex_);
  for (auto entry = entries_.begin(); entry != entries_.end(); ++entry) {
    mark(entry, Unsaved::All);
  }
}

bool DefaultsCache::hasUnsaved() {
  const MutexLock lock(mutex_);
  return !unsaved_.empty() || isBeingSaved_;
}

void DefaultsCache::collect(Batch& batch) {
  const MutexLock lock(mutex_);
  for (const Entries::iterator& slot : unsaved_) {
    DefaultsEntry& entry = slot->second;
    batch.origins.push_back({slot, entry.unsaved, entry.savedSize});
    // The key stays valid: entries are erased only in dropRemoved(), when the change is done.
    batch.changes.push_back(entry.takeChange(slot->first));
  }
  unsaved_.clear();
  isBeingSaved_ = true;
}

void DefaultsCache::finish(Batch& batch, bool isSaved) {
  const MutexLock lock(mutex_);
  if (isSaved) {
    dropRemoved(batch);
  } else {
    giveBack(batch);
  }
  batch.origins.clear();
  batch.changes.clear();
  isBeingSaved_ = false;
}

// Entries may have changed further since they were collected.
void DefaultsCache::giveBack(const Batch& batch) {
  for (const Batch::Origin& origin : batch.origins) {
    DefaultsEntry& entry = origin.entry->second;
    if (entry.unsaved != Unsaved::All) {
      entry.savedSize = origin.savedSize;
    }
    // The property lists of parts are gone by now; an array that was to be changed in parts is written whole.
    mark(origin.entry, origin.unsaved == Unsaved::Parts ? Unsaved::All : origin.unsaved);
  }
}

void DefaultsCache::dropRemoved(const Batch& batch) {
  for (const Batch::Origin& origin : batch.origins) {
    const DefaultsEntry& entry = origin.entry->second;
    if (!entry.isPresent && entry.unsaved == Unsaved::Nothing) {
      entries_.erase(origin.entry);
    }
  }
}

// The entry of a key that has a value. An entry without one only waits for the file to forget the key.
const DefaultsEntry* DefaultsCache::find(std::string_view key) const {
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.isPresent ? &found->second : nullptr;
}

DefaultsCache::Entries::iterator DefaultsCache::findText(std::string_view key) {
  const auto found = entries_.find(key);
  return found != entries_.end() && found->second.isPresent && found->second.isText ? found : entries_.end();
}

// Empties the entry of a key, or makes one, for another value or for none. `found` is where the key was looked up.
DefaultsCache::Entries::iterator DefaultsCache::clear(std::string_view key, Entries::iterator found) {
  const auto entry = found != entries_.end() ? found : entries_.try_emplace(std::string(key)).first;
  mark(entry, Unsaved::All);
  entry->second.empty();
  return entry;
}

void DefaultsCache::mark(Entries::iterator entry, Unsaved unsaved) {
  Unsaved& present = entry->second.unsaved;
  if (present == Unsaved::Nothing) {
    unsaved_.push_back(entry);
  }
  present = std::max(present, unsaved);
}

}  // namespace kesu
