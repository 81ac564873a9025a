#include "delivery/ResendBackOff.h"

#include <algorithm>
#include <utility>

namespace kesu {

double ResendBackOff::secondsUntilNext(double now) const {
  return pauseSeconds_ == 0.0 ? 0.0 : std::max(notBefore_ - now, 0.0);
}

void ResendBackOff::passEnded(bool isAllDelivered, double now) {
  if (isAllDelivered) {
    pauseSeconds_ = 0.0;
    return;
  }
  // What is left behind waits for the next delivery, too.
  hasNewlyKept_ = true;
  pauseSeconds_ = std::clamp(pauseSeconds_ * 2.0, kFirstPauseSeconds, kLongestPauseSeconds);
  notBefore_ = now + pauseSeconds_;
}

bool ResendBackOff::recordDelivered() {
  return std::exchange(hasNewlyKept_, false);
}

}  // namespace kesu
