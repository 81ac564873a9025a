#include "lifecycle/KesuManager.h"

#include <kesu/foundation/Exception.h>
#include <kesu/platform/ApplicationNotifications.h>

#include <utility>

#include "foundation/Text.h"
#include "lifecycle/InstallationRecord.h"
#include "lifecycle/TraitData.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/ExceptionTexts.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kLocationCheckSeconds = 60.0;
constexpr const char* kSource = "KesuManager";

}  // namespace

KesuManager::KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, KesuPost& post,
                         ResendPass& resendPass)
    : platform_(platform),
      settings_(settings),
      metrics_(metrics),
      post_(post),
      resendPass_(resendPass),
      instance_(platform.defaults, platform.random),
      columns_(platform, metrics, instance_, location_) {
  addPrimaryObservers();
}

KesuManager::~KesuManager() {
  platform_.mainLoop.cancel(locationTimer_);
  for (const NotificationCenter::Token token : observers_) {
    platform_.notifications.removeObserver(token);
  }
}

void KesuManager::addPrimaryObservers() {
  location_.reset();
  const auto observe = [this](std::string_view name, void (KesuManager::*handler)()) {
    observers_.push_back(platform_.notifications.addObserver(
        name, nullptr, [this, handler](const Notification&) { (this->*handler)(); }));
  };
  observe(kApplicationDidFinishLaunchingNotification, &KesuManager::didFinishLaunching);
  observe(kKesuReachabilityChangedNotification, &KesuManager::checkReachabilityAndRepostPendingPosts);
  locationTimer_ =
      platform_.mainLoop.schedule(kLocationCheckSeconds, true, [this] { location_.checkAndEnableLocations(); });
}

void KesuManager::initializeWithKey(const std::string& key) {
  if (isBlank(key)) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  if (!instance_.setAppKey(key)) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyDuplicateException));
  }
  copyright(key);
  instance_.load();
  if (platform_.bundle.path().ends_with(".appex")) {
    didFinishLaunching();
  }
}

void KesuManager::copyright(const std::string& key) {
  const double now = platform_.clock.now();
  KESU_LOG(0, "Kesu SDK %s", KesuPost::FullVersionHeader().c_str());
  KESU_LOG_AT(3, kSource, 150, "App key:%s Build:  %s %s %s", key.c_str(), kBuildDate, kBuildTime,
              platform_.locale.timeZoneAbbreviation(now).c_str());
  KESU_LOG(0, "Kesu. All rights reserved. %d", platform_.locale.localTime(now).year);
  KESU_LOG(0, " ");
}

void KesuManager::didFinishLaunching() {
  newInstallation();
  startReachabilityNotifications();
}

void KesuManager::newInstallation() {
  if (!instance_.firstLaunch()) {
    return;
  }
  Dictionary record;
  columns_.addCommonColumnsToDictionary(record, k_TableInstalls);
  addInstallationFacts(record, instance_.identity().id2, metrics_, platform_.bundle);
  addTraitData(record, TraitType::Full, instance_.identity().id2, platform_, metrics_);
  record.set(k_Reachability, metrics_.granularReachability());
  post_.post(std::move(record));
}

void KesuManager::updateEvent(const std::string& name) {
  // A name that is no text would spoil the whole flow, and with it the record that carries it.
  if (isValidUtf8(name)) {
    platform_.defaults.appendString(k_EventFlow, "$$" + name + "~~0");
    platform_.defaults.synchronize();
  }
}

void KesuManager::postAppEvent(Dictionary record) {
  postToTable(std::move(record), k_TableEvents);
}

void KesuManager::postAppEventToTableM(Dictionary record) {
  postToTable(std::move(record), k_TableSMS);
}

void KesuManager::postAppEventToTableU(Dictionary record) {
  postToTable(std::move(record), k_TableUser);
}

void KesuManager::postToTable(Dictionary record, std::string_view destination) {
  platform_.background.post([this, record = std::move(record), destination]() mutable {
    columns_.addCommonColumnsToDictionary(record, destination);
    record.set(k_Reachability, metrics_.granularReachability());
    postAndSave(std::move(record));
  });
}

void KesuManager::postActivationTrait(Dictionary record) {
  platform_.background.post([this, record = std::move(record)]() mutable {
    columns_.addCommonColumnsToDictionary(record, k_TableTraits);
    addTraitData(record, TraitType::ExplicitActivation, instance_.identity().id2, platform_, metrics_);
    postAndSave(std::move(record));
  });
}

void KesuManager::postAndSave(Dictionary record) {
  const std::string* named = record.findText(k_destinationKeyInDictionary);
  const std::string saveTimeKey =
      (named != nullptr ? *named : std::string(kUnknownDestination)) + std::string(kSaveTimeSuffix);
  post_.post(std::move(record));
  platform_.defaults.set(saveTimeKey, platform_.clock.now());
  platform_.defaults.synchronize();
}

void KesuManager::startReachabilityNotifications() {
  if (kesuServiceReachability_ == nullptr) {
    const HostAndPort target = settings_.reachabilityHost();
    kesuServiceReachability_ = KesuServiceReachability::reachabilityWithHostName(
        platform_.reachability, platform_.notifications, target.host, target.port);
  }
  if (kesuServiceReachability_ != nullptr) {
    kesuServiceReachability_->startNotifier();
  }
}

void KesuManager::checkReachabilityAndRepostPendingPosts() {
  if (kesuServiceReachability_ != nullptr) {
    resendPass_.start(kesuServiceReachability_->currentReachabilityStatus());
  }
}

}  // namespace kesu
