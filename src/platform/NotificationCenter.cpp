#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/Platform.h>

#include <algorithm>
#include <utility>

namespace kesu {

NotificationCenter& NotificationCenter::defaultCenter() {
  return Platform::current().notifications;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string_view name, const void* object,
                                                          Observer observer) {
  const MutexLock lock(mutex_);
  entries_.push_back({++lastToken_, std::string(name), object, std::move(observer)});
  return lastToken_;
}

void NotificationCenter::removeObserver(Token token) {
  Observer dying;  // Destroyed outside the lock: it may own something that calls back.
  const MutexLock lock(mutex_);
  const auto found = std::ranges::find(entries_, token, &Entry::token);
  if (found != entries_.end()) {
    dying = std::move(found->observer);
    entries_.erase(found);
  }
}

void NotificationCenter::post(std::string_view name, const void* object, Dictionary userInfo) {
  std::vector<Entry> told;
  {
    const MutexLock lock(mutex_);
    std::ranges::copy_if(entries_, std::back_inserter(told), [&](const Entry& entry) {
      return entry.name == name && (entry.object == nullptr || entry.object == object);
    });
  }
  const Notification notification{std::string(name), object, std::move(userInfo)};
  for (const Entry& entry : told) {
    if (isRegistered(entry.token)) {
      entry.observer(notification);
    }
  }
}

bool NotificationCenter::isRegistered(Token token) {
  const MutexLock lock(mutex_);
  return std::ranges::find(entries_, token, &Entry::token) != entries_.end();
}

}  // namespace kesu
