#include "lifecycle/CollectorWatch.h"

namespace kesu {

void CollectorWatch::startReachabilityNotifications() {
  // Created once: a launch may be announced again, and two watches would send every stored record twice.
  if (kesuServiceReachability_ == nullptr) {
    const HostAndPort target = settings_.reachabilityHost();
    kesuServiceReachability_ =
        KesuServiceReachability::reachabilityWithHostName(source_, notifications_, target.host, target.port);
  }
  if (kesuServiceReachability_ != nullptr) {
    kesuServiceReachability_->startNotifier();
  }
}

void CollectorWatch::checkReachabilityAndRepostPendingPosts() {
  // A notification of the same name may come from elsewhere in the process, before the launch.
  if (kesuServiceReachability_ != nullptr) {
    resendPass_.start(kesuServiceReachability_->currentReachabilityStatus());
  }
}

}  // namespace kesu
