#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "delivery/KesuPost.h"
#include "delivery/ResendPass.h"
#include "device/KesuMetrics.h"
#include "events/EventPoster.h"
#include "events/KesuVersionChangeEvent.h"
#include "lifecycle/Activations.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/CommonColumns.h"
#include "lifecycle/Location.h"
#include "lifecycle/RecordSender.h"
#include "lifecycle/RemoteNotifications.h"
#include "lifecycle/ScreenFlow.h"
#include "lifecycle/StateChanges.h"
#include "lifecycle/TopScreen.h"
#include "lifecycle/UsageStatistics.h"
#include "lifecycle/WeekCalendar.h"
#include "network/KesuServiceReachability.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// The object behind the facade: knows the key, watches the application's life cycle and connects what turns it into
/// records. One a process, made on the main thread; the posters of EventPoster may be called on any thread.
class KesuManager : public EventPoster {
 public:
  /// Installs the observers and the repeating timer. The services must outlive the manager.
  KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, KesuPost& post,
              ResendPass& resendPass, TopScreen& topScreen);
  ~KesuManager() override;

  KesuManager(const KesuManager&) = delete;
  KesuManager& operator=(const KesuManager&) = delete;

  /// Takes the key, loads the installation's identity and, inside an application extension (which is told of no
  /// launch), launches at once. Throws InternalInconsistencyException for a blank key and for a second one. Main
  /// thread.
  void initializeWithKey(const std::string& key);

  bool isSDKInitialized() override { return instance_.hasAppKey(); }

  // EventPoster. Records are completed and sent on the background queue, in the order of the calls.
  void updateEvent(const std::string& name) override;
  void updateScreenFlowForScenes(const std::string& name, double seconds) override;
  void postAppEvent(Dictionary record) override;
  void postAppEventToTableM(Dictionary record) override;
  void postAppEventToTableU(Dictionary record) override;
  void postActivationTrait(Dictionary record) override;

  /// Screens and push notifications, each with its own rules.
  StateChanges& stateChanges() { return stateChanges_; }
  RemoteNotifications& remoteNotifications() { return remoteNotifications_; }

 private:
  void addPrimaryObservers();
  void observe(std::string_view name, std::function<void()> handler);
  void copyright(const std::string& key);

  void didFinishLaunching();
  void newInstallation();
  bool hasItBeenSoManyDaysSinceSaving(int days, std::string_view destination);
  void startReachabilityNotifications();
  void checkReachabilityAndRepostPendingPosts();
  void printObsfucatedAscii85KaidIfNeeded();
  void appendToFlow(std::string_view flow, const std::string& name, std::string_view seconds);

  Platform& platform_;
  DeploymentSettings& settings_;
  KesuMetrics& metrics_;
  ResendPass& resendPass_;

  AppInstance instance_{platform_.defaults, platform_.random};
  Location location_;
  CommonColumns columns_{platform_, metrics_, instance_, location_};
  WeekCalendar calendar_{platform_.locale};
  CalendarVariants variants_{platform_.defaults, platform_.clock, platform_.locale, calendar_};
  UsageStatistics usage_{platform_.defaults, platform_.clock, calendar_};
  Activations activations_{platform_.defaults, platform_.clock, platform_.locale, calendar_};
  ScreenFlow flow_{platform_.defaults, platform_.clock, platform_.bundle, metrics_, usage_};
  KesuVersionChangeEvent versionChange_{platform_.defaults, platform_.background, metrics_, platform_.bundle};
  RecordSender sender_;
  StateChanges stateChanges_;
  RemoteNotifications remoteNotifications_{platform_.defaults, platform_.background, sender_};

  std::unique_ptr<KesuServiceReachability> kesuServiceReachability_;  // Main thread.
  std::vector<NotificationCenter::Token> observers_;
  MainLoop::TimerId locationTimer_ = 0;
};

}  // namespace kesu
