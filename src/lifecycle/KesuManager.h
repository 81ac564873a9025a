#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "delivery/KesuPost.h"
#include "delivery/ResendPass.h"
#include "device/KesuMetrics.h"
#include "events/EventPoster.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CommonColumns.h"
#include "lifecycle/Location.h"
#include "network/KesuServiceReachability.h"
#include "records/DeploymentSettings.h"

namespace kesu {

/// The object behind the facade: knows the key, watches the application's life cycle, completes records and hands them
/// to delivery. One a process, made on the main thread; the posters may be called on any thread.
class KesuManager : public EventPoster {
 public:
  /// Installs the observers and the repeating timer. The services must outlive the manager.
  KesuManager(Platform& platform, DeploymentSettings& settings, KesuMetrics& metrics, KesuPost& post,
              ResendPass& resendPass);
  ~KesuManager() override;

  KesuManager(const KesuManager&) = delete;
  KesuManager& operator=(const KesuManager&) = delete;

  /// Takes the key, loads the installation's identity and, inside an application extension (which is told of no
  /// launch), launches at once. Throws InternalInconsistencyException for a blank key and for a second one. Main
  /// thread.
  void initializeWithKey(const std::string& key);

  bool isSDKInitialized() override { return instance_.hasAppKey(); }

  AppInstance& instance() { return instance_; }
  Location& location() { return location_; }

  // EventPoster. Records are completed and sent on the background queue, in the order of the calls.
  void updateEvent(const std::string& name) override;
  void postAppEvent(Dictionary record) override;
  void postAppEventToTableM(Dictionary record) override;
  void postAppEventToTableU(Dictionary record) override;
  void postActivationTrait(Dictionary record) override;

  /// Posts a record and remembers when its destination was last written. Any thread.
  void postAndSave(Dictionary record);

  /// Posts the installation record if this is a first launch. Main thread.
  void newInstallation();

  /// Watches the collector's host from now on. A host name that cannot be watched leaves stored records on disk.
  void startReachabilityNotifications();

  /// Sends every stored record again if the collector can be reached.
  void checkReachabilityAndRepostPendingPosts();

 private:
  void addPrimaryObservers();
  void didFinishLaunching();
  void copyright(const std::string& key);
  void postToTable(Dictionary record, std::string_view destination);

  Platform& platform_;
  DeploymentSettings& settings_;
  KesuMetrics& metrics_;
  KesuPost& post_;
  ResendPass& resendPass_;

  AppInstance instance_;
  Location location_;
  CommonColumns columns_;
  std::unique_ptr<KesuServiceReachability> kesuServiceReachability_;  // Main thread.
  std::vector<NotificationCenter::Token> observers_;
  MainLoop::TimerId locationTimer_ = 0;
};

}  // namespace kesu
