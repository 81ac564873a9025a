#include "lifecycle/AppInstance.h"

#include <utility>

#include "records/DefaultsKeys.h"
#include "records/MessageIdentifier.h"

namespace kesu {

AppInstance::~AppInstance() {
  const MutexLock lock(waiting_->mutex);
  waiting_->instance = nullptr;
}

bool AppInstance::setAppKey(const std::string& key) {
  const MutexLock lock(mutex_);
  if (appKey_) {
    return false;
  }
  appKey_ = key;
  hasAppKey_.store(true, std::memory_order_release);
  return true;
}

void AppInstance::load() {
  {
    const MutexLock lock(mutex_);
    const bool isKnown = defaults_.isLoaded();
    if (isKnown) {
      settle();
    } else {
      loadProvisional();
    }
    isLoaded_.store(true, std::memory_order_release);
    if (isKnown) {
      return;
    }
  }
  {
    const MutexLock lock(waiting_->mutex);
    waiting_->instance = this;
  }
  defaults_.whenLoaded([waiting = waiting_] {
    const MutexLock lock(waiting->mutex);
    if (waiting->instance != nullptr) {
      waiting->instance->settleLate();
    }
  });
}

// In the user defaults as well, since requests to the services take it from there. The file's own values replace these.
void AppInstance::loadProvisional() {
  id_ = newBase64Uuid(random_);
  id2_ = newBase64Uuid(random_);
  appLaunchCount_ = 1;
  defaults_.set(kAppKeyDefault, appKey_.value_or(""));
  defaults_.set(kInstanceIdDefault, id_);
  defaults_.set(kInstanceId2Default, id2_);
}

void AppInstance::settleLate() {
  std::function<void()> done;
  {
    const MutexLock lock(mutex_);
    settle();
    done = std::exchange(whenSettled_, nullptr);
  }
  if (done) {
    done();
  }
}

void AppInstance::settle() {
  const std::string key = appKey_.value_or("");
  // Before the key is replaced below: half an identity, as a kill between two writes leaves it, counts as none.
  const auto storedKey = defaults_.get(kAppKeyDefault);
  firstLaunch_ = isProvisional(kInstanceIdDefault, id_) || isProvisional(kInstanceId2Default, id2_);
  if (storedKey && *storedKey != Value(key)) {
    firstLaunch_ = true;
    clearKesuPreference();
  }
  // Synchronized step by step: a kill in between leaves an installation that the next run completes.
  defaults_.set(kAppKeyDefault, key);
  defaults_.synchronize();
  if (firstLaunch_) {
    defaults_.set(kInstanceIdDefault, id_.empty() ? newBase64Uuid(random_) : id_);
    defaults_.set(kInstanceId2Default, id2_.empty() ? newBase64Uuid(random_) : id2_);
    defaults_.synchronize();
  }
  id_ = defaults_.text(kInstanceIdDefault);
  id2_ = defaults_.text(kInstanceId2Default);
  appLaunchCount_ = defaults_.integer(kLaunchCountDefault) + 1;
  defaults_.set(kLaunchCountDefault, appLaunchCount_);
  defaults_.synchronize();
  isSettled_ = true;
}

// Whether there is no value from an earlier run under `key`. `provisional` is "" when there was no need for one.
bool AppInstance::isProvisional(std::string_view key, const std::string& provisional) const {
  const std::optional<Value> value = defaults_.get(key);
  return !value || (!provisional.empty() && *value == Value(provisional));
}

void AppInstance::whenSettled(std::function<void()> done) {
  {
    const MutexLock lock(mutex_);
    if (!isSettled_) {
      whenSettled_ = std::move(done);
      return;
    }
  }
  done();
}

AppInstance::Identity AppInstance::identity() const {
  const MutexLock lock(mutex_);
  return {appKey_.value_or(""), id_, id2_};
}

bool AppInstance::firstLaunch() const {
  const MutexLock lock(mutex_);
  return firstLaunch_;
}

std::int64_t AppInstance::appLaunchCount() const {
  const MutexLock lock(mutex_);
  return appLaunchCount_;
}

void AppInstance::clearKesuPreference() {
  for (const std::string_view key : kKeysClearedWithAppKey) {
    defaults_.remove(key);
  }
  defaults_.synchronize();
}

}  // namespace kesu
