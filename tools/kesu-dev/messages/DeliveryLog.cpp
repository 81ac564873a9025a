#include "tools/kesu-dev/messages/DeliveryLog.h"

#include <utility>

namespace kesu::dev {
namespace {

constexpr std::size_t kHooksKept = 100;

}  // namespace

std::vector<Message> DeliveryLog::unfetched(const std::string& instance, const std::vector<Message>& messages) const {
  const MutexLock lock(mutex_);
  return newFor(instance, messages);
}

std::vector<Message> DeliveryLog::fetch(const std::string& instance, const std::vector<Message>& messages, Form form) {
  const MutexLock lock(mutex_);
  std::vector<Message> result = newFor(instance, messages);
  for (const Message& message : result) {
    count(instance, message, form);
  }
  return result;
}

void DeliveryLog::fetchOne(const std::string& instance, const Message& message) {
  const MutexLock lock(mutex_);
  count(instance, message, Form::Whole);
}

MessageTally DeliveryLog::tally(const MessageKey& key) const {
  const MutexLock lock(mutex_);
  const auto found = tallies_.find(key);
  return found == tallies_.end() ? MessageTally() : found->second;
}

void DeliveryLog::addHook(HookCall call) {
  const MutexLock lock(mutex_);
  hooks_.push_back(std::move(call));
  if (hooks_.size() > kHooksKept) {
    hooks_.pop_front();
  }
}

std::vector<HookCall> DeliveryLog::hooks() const {
  const MutexLock lock(mutex_);
  return {hooks_.begin(), hooks_.end()};
}

void DeliveryLog::clear() {
  const MutexLock lock(mutex_);
  fetched_.clear();
  tallies_.clear();
  hooks_.clear();
}

std::vector<Message> DeliveryLog::newFor(const std::string& instance, const std::vector<Message>& messages) const {
  const auto known = fetched_.find(instance);
  std::vector<Message> result;
  for (const Message& message : messages) {
    if (known == fetched_.end() || !known->second.contains({message.mid, message.cid})) {
      result.push_back(message);
    }
  }
  return result;
}

void DeliveryLog::count(const std::string& instance, const Message& message, Form form) {
  const MessageKey key{message.mid, message.cid};
  fetched_[instance].insert(key);
  MessageTally& tally = tallies_[key];
  ++(form == Form::Header ? tally.asHeader : tally.whole);
}

}  // namespace kesu::dev
