#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/Platform.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu {

struct NotificationCenter::Registry {
  struct Entry {
    Token token = 0;
    std::string name;
    const void* object = nullptr;
    Observer observer;
  };

  bool contains(Token token) {
    const MutexLock lock(mutex);
    return std::ranges::find(entries, token, &Entry::token) != entries.end();
  }

  Mutex mutex;
  std::vector<Entry> entries KESU_GUARDED_BY(mutex);
  Token lastToken KESU_GUARDED_BY(mutex) = 0;
};

NotificationCenter::NotificationCenter() : registry_(std::make_unique<Registry>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter& NotificationCenter::defaultCenter() {
  return Platform::current().notifications;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string_view name, const void* object,
                                                          Observer observer) {
  const MutexLock lock(registry_->mutex);
  registry_->entries.push_back({++registry_->lastToken, std::string(name), object, std::move(observer)});
  return registry_->lastToken;
}

void NotificationCenter::removeObserver(Token token) {
  Observer dying;  // Destroyed outside the lock: it may own something that calls back.
  const MutexLock lock(registry_->mutex);
  auto& entries = registry_->entries;
  const auto found = std::ranges::find(entries, token, &Registry::Entry::token);
  if (found != entries.end()) {
    dying = std::move(found->observer);
    entries.erase(found);
  }
}

void NotificationCenter::post(std::string_view name, const void* object, Dictionary userInfo) {
  // A copy, called without the mutex: an observer may add and remove observers, and post.
  std::vector<Registry::Entry> receivers;
  {
    const MutexLock lock(registry_->mutex);
    std::ranges::copy_if(registry_->entries, std::back_inserter(receivers), [&](const Registry::Entry& entry) {
      return entry.name == name && (entry.object == nullptr || entry.object == object);
    });
  }
  const Notification notification{std::string(name), object, std::move(userInfo)};
  for (const Registry::Entry& receiver : receivers) {
    if (registry_->contains(receiver.token)) {  // An earlier observer may have removed it.
      receiver.observer(notification);
    }
  }
}

}  // namespace kesu
