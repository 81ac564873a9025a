#include "testing/FakeUserDefaults.h"

#include "foundation/PropertyList.h"

namespace kesu::testing {
namespace {

bool isPropertyListValue(const Value& value) {
  const bool isContainer = value.array() != nullptr || value.dictionary() != nullptr;
  return isContainer ? writePropertyList(value).has_value() : !value.isNull();
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
  values_.insert_or_assign(std::string(key), std::move(value));
  return true;
}

void FakeUserDefaults::remove(std::string_view key) {
  const MutexLock lock(mutex_);
  values_.erase(std::string(key));
}

void FakeUserDefaults::appendString(std::string_view key, std::string_view suffix) {
  const MutexLock lock(mutex_);
  Value& value = values_[std::string(key)];
  std::string grown = value.text() != nullptr ? *value.text() : std::string();
  value = Value(grown.append(suffix));
}

std::optional<std::string> FakeUserDefaults::takeString(std::string_view key) {
  const MutexLock lock(mutex_);
  const auto found = values_.find(key);
  if (found == values_.end() || found->second.text() == nullptr) {
    return std::nullopt;
  }
  std::string text = *found->second.text();
  values_.erase(found);
  return text;
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
  if (!refusesWrites_) {
    onDisk_ = values_;
  }
  return !refusesWrites_;
}

void FakeUserDefaults::checkpoint() {
  const MutexLock lock(mutex_);
  ++checkpointCount_;
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
