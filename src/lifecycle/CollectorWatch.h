#pragma once

#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/ReachabilitySource.h>

#include <memory>

#include "delivery/ResendPass.h"
#include "network/KesuServiceReachability.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// Watches the way to the collector and sends stored records again when it changes. Main thread.
class CollectorWatch {
 public:
  CollectorWatch(ReachabilitySource& source, NotificationCenter& notifications, DeploymentSettings& settings,
                 ResendPass& resendPass)
      : source_(source), notifications_(notifications), settings_(settings), resendPass_(resendPass) {}

  /// Starts watching. Changes are announced as kKesuReachabilityChangedNotification, the present status as the first.
  void startReachabilityNotifications();

  /// Starts a re-send pass by the present status. Does nothing before the watch was started.
  void checkReachabilityAndRepostPendingPosts();

 private:
  ReachabilitySource& source_;
  NotificationCenter& notifications_;
  DeploymentSettings& settings_;
  ResendPass& resendPass_;

  std::unique_ptr<KesuServiceReachability> kesuServiceReachability_;
};

}  // namespace kesu
