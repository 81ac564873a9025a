#include "platform/linux/reachability/ReachabilityMailbox.h"

#include <utility>

#include "platform/linux/reachability/ReachabilityRules.h"

namespace kesu {
namespace {

constexpr std::int64_t kNoFlagsYet = -1;  // Flags are 32 bits: no value of theirs.

}  // namespace

ReachabilityWatch::ReachabilityWatch(std::uint64_t watchId, ReachabilityTarget watched, std::function<void()> tell)
    : id(watchId),
      target(std::move(watched)),
      host(comparableHostName(target.hostName)),
      announce(std::move(tell)),
      flags_(kNoFlagsYet) {}

std::optional<std::uint32_t> ReachabilityWatch::flags() const {
  const std::int64_t known = flags_.load();
  return known == kNoFlagsYet ? std::nullopt : std::optional(static_cast<std::uint32_t>(known));
}

void ReachabilityWatch::setFlags(std::optional<std::uint32_t> flags) {
  flags_.store(flags ? std::int64_t{*flags} : kNoFlagsYet);
}

ReachabilityMailbox::ReachabilityMailbox(std::shared_ptr<WakeEvent> wake) : wake_(std::move(wake)) {}

void ReachabilityMailbox::add(std::shared_ptr<ReachabilityWatch> watch) {
  MutexLock lock(mutex_);
  entries_.push_back({{std::move(watch)}});
  wake_->signal();
}

void ReachabilityMailbox::remove(std::uint64_t watchId) {
  MutexLock lock(mutex_);
  std::erase_if(entries_, [watchId](const Entry& entry) { return entry.item.watch->id == watchId; });
  wake_->signal();
}

void ReachabilityMailbox::observe(const std::string& host, int port, bool connected) {
  const std::string name = comparableHostName(host);
  bool isNews = false;
  MutexLock lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.item.watch->target.port == port && entry.item.watch->host == name) {
      isNews = note(entry, connected) || isNews;
    }
  }
  if (isNews) {
    wake_->signal();
  }
}

bool ReachabilityMailbox::note(Entry& entry, bool connected) {
  Item& item = entry.item;
  if (connected && !entry.wantsSuccesses && !item.failed) {
    return false;
  }
  const Item before = item;
  item.failed = item.failed || !connected;
  entry.wantsSuccesses = entry.wantsSuccesses || !connected;
  item.connected = connected;
  return item.failed != before.failed || item.connected != before.connected;
}

void ReachabilityMailbox::stop() {
  MutexLock lock(mutex_);
  stopped_ = true;
  wake_->signal();
}

std::optional<std::vector<ReachabilityMailbox::Item>> ReachabilityMailbox::take() {
  MutexLock lock(mutex_);
  if (stopped_) {
    return std::nullopt;
  }
  std::vector<Item> items;
  for (Entry& entry : entries_) {
    items.push_back(entry.item);
    entry.item.failed = false;
    entry.item.connected = false;
  }
  return items;
}

void ReachabilityMailbox::setWantsSuccesses(std::uint64_t watchId, bool wants) {
  MutexLock lock(mutex_);
  for (Entry& entry : entries_) {
    if (entry.item.watch->id == watchId) {
      entry.wantsSuccesses = wants;
    }
  }
}

}  // namespace kesu
