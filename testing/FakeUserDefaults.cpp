#include "testing/FakeUserDefaults.h"

#include <utility>

#include "foundation/PropertyList.h"

namespace kesu::testing {
namespace {

bool isPropertyListValue(const Value& value) {
  const bool isContainer = value.array() != nullptr || value.dictionary() != nullptr;
  return isContainer ? writePropertyList(value, PropertyListForm::Escaped).has_value() : !value.isNull();
}

}  // namespace

FakeUserDefaults::FakeUserDefaults(const Dictionary& onDisk) {
  for (const Dictionary::Entry& entry : onDisk) {
    values_.insert_or_assign(entry.key, entry.value);
  }
  onDisk_ = values_;
}

std::optional<Value> FakeUserDefaults::get(std::string_view key) {
  const MutexLock lock(mutex_);
  const auto found = values_.find(key);
  return found != values_.end() ? std::optional<Value>(found->second) : std::nullopt;
}

bool FakeUserDefaults::contains(std::string_view key) {
  const MutexLock lock(mutex_);
  return values_.contains(key);
}

bool FakeUserDefaults::set(std::string_view key, Value value) {
  if (!isPropertyListValue(value)) {
    return false;
  }
  const MutexLock lock(mutex_);
  put(key, value);
  return true;
}

void FakeUserDefaults::put(std::string_view key, const Value& value) {
  grown_.erase(std::string(key));
  values_.insert_or_assign(std::string(key), value);
}

void FakeUserDefaults::remove(std::string_view key) {
  const MutexLock lock(mutex_);
  erase(key);
}

void FakeUserDefaults::erase(std::string_view key) {
  grown_.erase(std::string(key));
  values_.erase(std::string(key));
}

void FakeUserDefaults::apply(std::span<const DefaultsChange> changes) {
  const MutexLock lock(mutex_);
  for (const DefaultsChange& change : changes) {
    if (change.kind == DefaultsChange::Kind::Remove) {
      erase(change.key);
    } else if (change.kind == DefaultsChange::Kind::Set && isPropertyListValue(change.value)) {
      put(change.key, change.value);
    } else if (change.kind == DefaultsChange::Kind::Append) {
      grow(change.key, change.suffix);
    } else if (change.kind == DefaultsChange::Kind::Raise) {
      raise(std::string(change.key), change.value);
    }
  }
}

void FakeUserDefaults::raise(const std::string& key, const Value& value) {
  raised_.insert(key);
  const auto present = values_.find(key);
  if (present == values_.end() || present->second.integerValue() < value.integerValue()) {
    put(key, value);
  }
}

void FakeUserDefaults::grow(std::string_view key, std::string_view suffix) {
  grown_[std::string(key)].append(suffix);
  Value& value = values_[std::string(key)];
  std::string grown = value.text() != nullptr ? *value.text() : std::string();
  value = Value(grown.append(suffix));
}

std::vector<std::string> FakeUserDefaults::keys() {
  const MutexLock lock(mutex_);
  std::vector<std::string> keys;
  for (const auto& [key, value] : values_) {
    keys.push_back(key);
  }
  return keys;
}

bool FakeUserDefaults::synchronize() {
  const MutexLock lock(mutex_);
  ++synchronizeCount_;
  const bool isWritten = isLoaded_ && !refusesWrites_;
  if (isWritten) {
    onDisk_ = values_;
  }
  return isWritten;
}

bool FakeUserDefaults::isLoaded() {
  const MutexLock lock(mutex_);
  return isLoaded_;
}

void FakeUserDefaults::whenLoaded(std::function<void()> done) {
  {
    const MutexLock lock(mutex_);
    if (!isLoaded_) {
      waiting_.push_back(std::move(done));
      return;
    }
  }
  done();
}

void FakeUserDefaults::hideDisk() {
  const MutexLock lock(mutex_);
  values_.clear();
  isLoaded_ = false;
}

void FakeUserDefaults::showDisk() {
  std::vector<std::function<void()>> waiting;
  {
    const MutexLock lock(mutex_);
    isLoaded_ = true;
    Values meanwhile = std::exchange(values_, onDisk_);
    values_.merge(meanwhile);
    for (const std::string& key : raised_) {
      const auto kept = meanwhile.find(key);  // Which the disk has as well.
      if (kept != meanwhile.end()) {
        raise(key, kept->second);
      }
    }
    for (const auto& [key, text] : std::exchange(grown_, {})) {
      if (!text.empty() && onDisk_.contains(key)) {
        grow(key, text);
      }
    }
    waiting.swap(waiting_);
  }
  for (const std::function<void()>& done : waiting) {
    done();
  }
}

void FakeUserDefaults::mount(const Dictionary& disk) {
  {
    const MutexLock lock(mutex_);
    onDisk_.clear();
    for (const auto& [key, value] : disk) {
      onDisk_.insert_or_assign(std::string(key), value);
    }
  }
  showDisk();
}

bool FakeUserDefaults::checkpoint() {
  const MutexLock lock(mutex_);
  ++checkpointCount_;
  return !refusesWrites_;
}

Dictionary FakeUserDefaults::keptOnDisk() {
  const MutexLock lock(mutex_);
  Dictionary kept;
  for (const auto& [key, value] : onDisk_) {
    kept.set(key, value);
  }
  return kept;
}

void FakeUserDefaults::loseUnsynchronized() {
  const MutexLock lock(mutex_);
  values_ = onDisk_;
  grown_.clear();
  raised_.clear();
}

int FakeUserDefaults::synchronizeCount() {
  const MutexLock lock(mutex_);
  return synchronizeCount_;
}

int FakeUserDefaults::checkpointCount() {
  const MutexLock lock(mutex_);
  return checkpointCount_;
}

void FakeUserDefaults::refuseWrites(bool refuse) {
  const MutexLock lock(mutex_);
  refusesWrites_ = refuse;
}

}  // namespace kesu::testing
