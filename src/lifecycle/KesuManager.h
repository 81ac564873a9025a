#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "delivery/KesuPost.h"
#include "delivery/ResendPass.h"
#include "device/KesuMetrics.h"
#include "events/EventPoster.h"
#include "events/KesuVersionChangeEvent.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CalendarReports.h"
#include "lifecycle/CollectorWatch.h"
#include "lifecycle/Location.h"
#include "lifecycle/RecordSender.h"
#include "lifecycle/RemoteNotifications.h"
#include "lifecycle/StateChanges.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// The object behind the facade: keeps the key, observes the application's life cycle and connects what turns it into
/// records. One per process, created on the main thread; the operations of EventPoster may be called on any thread.
class KesuManager : public EventPoster {
 public:
  /// Installs the observers. The services must outlive the manager.
  KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, Outbox& outbox, KesuPost& post,
              ResendPass& resendPass, VisibleScreens visibleScreens);
  ~KesuManager() override;

  KesuManager(const KesuManager&) = delete;
  KesuManager& operator=(const KesuManager&) = delete;

  /// Keeps the key, loads the installation's identity and, inside an application extension (which receives no launch
  /// notification), launches synchronously. Throws InternalInconsistencyException for a blank key and for a second one.
  /// Main thread.
  void initializeWithKey(const std::string& key);

  bool isSDKInitialized() override { return instance_.hasAppKey(); }

  // EventPoster. Records are in the outbox when these return; the background queue completes and sends them, in the
  // order of the calls.
  void updateScreenFlowForScenes(const std::string& name, double seconds) override;
  void postAppEvent(const Attributes& attributes, const Object& name) override;
  void postAppEventToTableM(const Attributes& attributes, const Object& name) override;
  void postAppEventToTableU(const Attributes& attributes) override;
  void postActivationTrait(const Attributes& attributes) override;

  /// Return the parts that take screens and push notifications.
  StateChanges& stateChanges() { return stateChanges_; }
  RemoteNotifications& remoteNotifications() { return remoteNotifications_; }

 private:
  void addPrimaryObservers();
  void observe(std::string_view name, std::function<void()> handler);
  void copyright(const std::string& key);

  void didFinishLaunching();
  void reportInstallation();
  void newInstallation();
  bool hasItBeenSoManyDaysSinceSaving(int days, std::string_view destination);
  void printObsfucatedAscii85KaidIfNeeded();
  void postEvent(const Attributes& attributes, const Object& name, std::string_view destination);

  Platform& platform_;
  DeploymentSettings& settings_;
  KesuMetrics& metrics_;
  Outbox& outbox_;

  AppInstance instance_{platform_.defaults, platform_.random};
  Location location_{platform_.mainLoop};
  CalendarReports reports_{platform_};
  KesuVersionChangeEvent versionChange_{platform_.defaults, platform_.background, metrics_, platform_.bundle};
  RecordSender sender_;
  StateChanges stateChanges_;
  RemoteNotifications remoteNotifications_{platform_.defaults, platform_.background, sender_};
  CollectorWatch collector_;
  std::vector<NotificationCenter::Token> observers_;
};

}  // namespace kesu
