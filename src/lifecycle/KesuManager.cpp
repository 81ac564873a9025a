#include "lifecycle/KesuManager.h"

#include <kesu/foundation/Exception.h>
#include <kesu/platform/ApplicationNotifications.h>

#include <cmath>
#include <utility>

#include "foundation/NumberText.h"
#include "foundation/Text.h"
#include "lifecycle/DeveloperToken.h"
#include "lifecycle/InstallationRecord.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/ExceptionTexts.h"
#include "records/RecordKeys.h"
#include "records/StateCodes.h"
#include "records/Versions.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kLocationCheckSeconds = 60.0;
constexpr double kSecondsPerDay = 86400.0;
constexpr const char* kSource = "KesuManager";

}  // namespace

KesuManager::KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, KesuPost& post,
                         ResendPass& resendPass, TopScreen& topScreen)
    : platform_(platform),
      settings_(settings),
      metrics_(metrics),
      resendPass_(resendPass),
      sender_(platform, metrics, post, instance_, columns_, variants_),
      stateChanges_(platform.background, metrics, instance_, sender_, flow_, usage_, activations_, variants_,
                    topScreen) {
  addPrimaryObservers();
}

KesuManager::~KesuManager() {
  platform_.mainLoop.cancel(locationTimer_);
  for (const NotificationCenter::Token token : observers_) {
    platform_.notifications.removeObserver(token);
  }
}

void KesuManager::observe(std::string_view name, std::function<void()> handler) {
  observers_.push_back(platform_.notifications.addObserver(
      name, nullptr, [handler = std::move(handler)](const Notification&) { handler(); }));
}

void KesuManager::addPrimaryObservers() {
  location_.reset();
  observe(kApplicationDidFinishLaunchingNotification, [this] { didFinishLaunching(); });
  observe(kApplicationDidEnterBackgroundNotification,
          [this] { stateChanges_.stateChangeEventAppLevel(kStateBackground, std::nullopt); });
  observe(kApplicationWillEnterForegroundNotification,
          [this] { stateChanges_.stateChangeEventAppLevel(kStateResume, std::nullopt); });
  observe(kCurrentLocaleDidChangeNotification, [this] { sender_.saveTraits(TraitType::LocaleChanged); });
  observe(kKesuReachabilityChangedNotification, [this] { checkReachabilityAndRepostPendingPosts(); });
  observe(kApplicationWillTerminateNotification,
          [this] { stateChanges_.stateChangeEventAppLevel(kStateTerminate, kTerminateDetailText); });
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
  if (instance_.firstLaunch()) {
    newInstallation();
    sender_.saveTraits(TraitType::FirstLaunch);
  } else if (hasItBeenSoManyDaysSinceSaving(1, k_TableTraits)) {
    sender_.saveTraits(TraitType::Full);
  }
  stateChanges_.stateChangeEventAppLevel(kStateLaunch, kLaunchDetailText);
  versionChange_.checkVersionChangeAndPost();
  startReachabilityNotifications();
  printObsfucatedAscii85KaidIfNeeded();
}

void KesuManager::newInstallation() {
  Dictionary record;
  sender_.addCommonColumns(record, k_TableInstalls);
  addInstallationFacts(record, instance_.identity().id2, metrics_, platform_.bundle);
  sender_.addTraits(record, TraitType::Full);
  record.set(k_Reachability, metrics_.granularReachability());
  sender_.post(std::move(record));
}

bool KesuManager::hasItBeenSoManyDaysSinceSaving(int days, std::string_view destination) {
  const double savedAt = platform_.defaults.real(std::string(destination) + std::string(kSaveTimeSuffix));
  return days < 1 || savedAt == 0.0 || platform_.clock.now() - savedAt >= days * kSecondsPerDay;
}

void KesuManager::printObsfucatedAscii85KaidIfNeeded() {
  if (!settings_.isProductionMode()) {
    KESU_LOG(0, "Kesu development mode. Paste this token into the console to find this installation: %s",
             developerToken(instance_.identity().id).c_str());
  }
}

void KesuManager::appendToFlow(std::string_view flow, const std::string& name, std::string_view seconds) {
  // A name that is no text would spoil the whole flow, and with it the record that carries it.
  if (isValidUtf8(name)) {
    platform_.defaults.appendString(flow, flowEntry(name, seconds));
    platform_.defaults.synchronize();
  }
}

void KesuManager::updateEvent(const std::string& name) {
  appendToFlow(k_EventFlow, name, "0");
}

void KesuManager::updateScreenFlowForScenes(const std::string& name, double seconds) {
  if (std::isfinite(seconds)) {  // "nan" and "inf" are no seconds to whoever reads the flow.
    appendToFlow(k_SceneFlow, name, fixed(seconds, 1));
  }
}

void KesuManager::postAppEvent(Dictionary record) {
  sender_.postToTable(std::move(record), k_TableEvents);
}

void KesuManager::postAppEventToTableM(Dictionary record) {
  sender_.postToTable(std::move(record), k_TableSMS);
}

void KesuManager::postAppEventToTableU(Dictionary record) {
  sender_.postToTable(std::move(record), k_TableUser);
}

void KesuManager::postActivationTrait(Dictionary record) {
  sender_.postAppTraits(std::move(record), TraitType::ExplicitActivation);
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
