#include "lifecycle/AppInstance.h"

#include "records/DefaultsKeys.h"
#include "records/MessageIdentifier.h"

namespace kesu {

bool AppInstance::setAppKey(const std::string& key) {
  const MutexLock lock(mutex_);
  if (appKey_) {
    return false;
  }
  appKey_ = key;
  return true;
}

bool AppInstance::hasAppKey() const {
  const MutexLock lock(mutex_);
  return appKey_.has_value();
}

void AppInstance::load() {
  const MutexLock lock(mutex_);
  const std::string key = appKey_.value_or("");
  // Before the key is replaced below: half an identity, as a kill between two writes leaves it, counts as none.
  const auto storedKey = defaults_.get(kAppKeyDefault);
  firstLaunch_ = !defaults_.get(kInstanceIdDefault) || !defaults_.get(kInstanceId2Default);
  if (storedKey && *storedKey != Value(key)) {
    firstLaunch_ = true;
    clearKesuPreference();
  }
  // Synchronized step by step: a kill in between leaves an installation that the next run completes.
  defaults_.set(kAppKeyDefault, key);
  defaults_.synchronize();
  if (firstLaunch_) {
    defaults_.set(kInstanceIdDefault, newBase64Uuid(random_));
    defaults_.set(kInstanceId2Default, newBase64Uuid(random_));
    defaults_.synchronize();
  }
  id_ = defaults_.text(kInstanceIdDefault);
  id2_ = defaults_.text(kInstanceId2Default);
  appLaunchCount_ = defaults_.integer(kLaunchCountDefault) + 1;
  defaults_.set(kLaunchCountDefault, appLaunchCount_);
  defaults_.synchronize();
  isLoaded_.store(true, std::memory_order_release);
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
