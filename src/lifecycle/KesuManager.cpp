#include "lifecycle/KesuManager.h"

#include <kesu/foundation/Exception.h>
#include <kesu/platform/ApplicationNotifications.h>
#include <kesu/records/Constants.h>

#include <cmath>
#include <memory_resource>
#include <string_view>
#include <utility>

#include "foundation/NumberText.h"
#include "foundation/Text.h"
#include "lifecycle/DeveloperToken.h"
#include "lifecycle/InstallationRecord.h"
#include "lifecycle/WeekCalendar.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "records/StateCodes.h"
#include "records/Versions.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr const char* kSource = "KesuManager";

}  // namespace

KesuManager::KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, Outbox& outbox,
                         KesuPost& post, ResendPass& resendPass, VisibleScreens visibleScreens)
    : platform_(platform),
      settings_(settings),
      metrics_(metrics),
      outbox_(outbox),
      sender_(platform, metrics, outbox, post, instance_, location_, reports_.variants),
      stateChanges_(platform, metrics, instance_, sender_, reports_, std::move(visibleScreens)),
      collector_(platform.reachability, platform.notifications, settings, resendPass) {
  addPrimaryObservers();
  sender_.start();
}

KesuManager::~KesuManager() {
  for (const NotificationCenter::Token token : observers_) {
    platform_.notifications.removeObserver(token);
  }
}

void KesuManager::observe(std::string_view name, std::function<void()> handler) {
  observers_.push_back(
      platform_.notifications.addObserver(name, nullptr, [this, handler = std::move(handler)](const Notification&) {
        if (!outbox_.isInForkedChild()) {  // Which may hang at the first mutex.
          handler();
        }
      }));
}

// All handlers run on the main thread, where hosts announce these, so that they may look at the screens. StateChanges
// moves what takes time to the background queue.
void KesuManager::addPrimaryObservers() {
  observe(kApplicationDidFinishLaunchingNotification, [this] { didFinishLaunching(); });
  observe(kApplicationDidEnterBackgroundNotification, [this] {
    stateChanges_.stateChangeEventAppLevel(kStateBackground, std::nullopt);
    outbox_.handOverSoon();  // A set in standby may be switched off.
  });
  observe(kApplicationWillEnterForegroundNotification,
          [this] { stateChanges_.stateChangeEventAppLevel(kStateResume, std::nullopt); });
  observe(kCurrentLocaleDidChangeNotification, [this] { sender_.saveTraits(TraitType::LocaleChanged); });
  observe(kKesuReachabilityChangedNotification, [this] { collector_.checkReachabilityAndRepostPendingPosts(); });
  observe(kApplicationWillTerminateNotification,
          [this] { stateChanges_.stateChangeEventAppLevel(kStateTerminate, kTerminateDetailText); });
}

void KesuManager::initializeWithKey(const std::string& key) {
  if (isBlank(key)) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  if (!instance_.setAppKey(key)) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyDuplicateException));
  }
  copyright(key);    // Before anything of this run is logged.
  outbox_.open();    // First: what it changes is read below.
  instance_.load();  // From here on records carry their context.
  sender_.noteContext();
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

// The order in which the collector learns of a run: the installation, its traits, then what happens in it; the first
// two come later only while the user defaults cannot be read.
void KesuManager::didFinishLaunching() {
  instance_.whenSettled([this] { reportInstallation(); });
  stateChanges_.stateChangeEventAppLevel(kStateLaunch, kLaunchDetailText);
  versionChange_.checkVersionChangeAndPost();
  // Last: the first status that it announces starts the re-send pass of older records.
  collector_.startReachabilityNotifications();
  printObsfucatedAscii85KaidIfNeeded();
}

void KesuManager::reportInstallation() {
  sender_.noteContext();  // The identity may have been provisional until now.
  if (instance_.firstLaunch()) {
    newInstallation();
    sender_.saveTraits(TraitType::FirstLaunch);
  } else if (hasItBeenSoManyDaysSinceSaving(1, k_TableTraits)) {
    sender_.saveTraits(TraitType::Full);
  }
}

void KesuManager::newInstallation() {
  Dictionary record;
  addInstallationFacts(record, instance_.identity().id2, metrics_, platform_.bundle);
  sender_.addTraits(record, TraitType::Full);
  record.set(k_Reachability, metrics_.granularReachability());
  sender_.postBehindColumns(record, k_TableInstalls);
}

bool KesuManager::hasItBeenSoManyDaysSinceSaving(int days, std::string_view destination) {
  // 0: never saved. The other comparison is by time, not by day, so that a change of the zone refreshes nothing.
  const double savedAt = platform_.defaults.real(std::string(destination) + std::string(kSaveTimeSuffix));
  return days < 1 || savedAt == 0.0 || platform_.clock.now() - savedAt >= days * kSecondsPerDay;
}

void KesuManager::printObsfucatedAscii85KaidIfNeeded() {
  if (!settings_.isProductionMode()) {
    KESU_LOG(0, "Kesu development mode. Paste this token into the console to find this installation: %s",
             developerToken(instance_.identity().id).c_str());
  }
}

void KesuManager::updateScreenFlowForScenes(const std::string& name, double seconds) {
  // The collector cannot read "nan" and "inf".
  if (std::isfinite(seconds) && isValidUtf8(name)) {
    const std::string entry = flowEntry(std::string(), name, fixed(seconds, 1));
    const DefaultsChange growth = DefaultsChange::append(k_SceneFlow, entry);
    outbox_.change({&growth, 1});
  }
}

void KesuManager::postEvent(const Attributes& attributes, const Object& name, std::string_view destination) {
  const Value* value = name ? &*name : nullptr;
  const std::string* text = value != nullptr ? value->text() : nullptr;
  // Bytes that are not UTF-8 would make the whole flow, and with it the record that carries it, unsendable.
  const bool isInFlow = text != nullptr && !text->empty() && isValidUtf8(*text);
  char room[256];  // A post allocates nothing, unless the name is long.
  std::pmr::monotonic_buffer_resource memory(room, sizeof room);
  const auto entry = flowEntry(std::pmr::string(&memory), isInFlow ? *text : std::string_view(), "0");
  const DefaultsChange growth = DefaultsChange::append(k_EventFlow, entry);
  sender_.postToTable(attributes, destination, Replacement{k_KesuEventName, value}, {&growth, isInFlow ? 1U : 0U});
}

void KesuManager::postAppEvent(const Attributes& attributes, const Object& name) {
  postEvent(attributes, name, k_TableEvents);
}

void KesuManager::postAppEventToTableM(const Attributes& attributes, const Object& name) {
  postEvent(attributes, name, k_TableSMS);
}

void KesuManager::postAppEventToTableU(const Attributes& attributes) {
  sender_.postToTable(attributes, k_TableUser);
}

void KesuManager::postActivationTrait(const Attributes& attributes) {
  sender_.postAppTraits(attributes, TraitType::ExplicitActivation);
}

}  // namespace kesu
