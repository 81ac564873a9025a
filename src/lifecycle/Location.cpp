#include "lifecycle/Location.h"

#include <cmath>
#include <utility>

namespace kesu {
namespace {

/// The agreed period. The check is a wake-up of the main loop, so not more often.
constexpr double kCheckSeconds = 60.0;

}  // namespace

Location::Location(MainLoop& mainLoop)
    : mainLoop_(mainLoop), timer_(mainLoop.schedule(kCheckSeconds, true, [this] { checkAndEnableLocations(); })) {}

Location::~Location() {
  mainLoop_.cancel(timer_);
}

void Location::setManager(std::unique_ptr<LocationManager> manager) {
  const MutexLock lock(mutex_);
  manager_ = std::move(manager);
}

void Location::didUpdateLocations(const std::vector<Position>& positions) {
  if (positions.empty()) {
    return;
  }
  const Position& last = positions.back();
  {
    const MutexLock lock(mutex_);
    position_ = Position{std::fabs(last.latitude), std::fabs(last.longitude), std::fabs(last.altitude)};
  }
  stopUpdatingLocation();
}

void Location::stopUpdatingLocation() {
  std::unique_ptr<LocationManager> manager;
  {
    const MutexLock lock(mutex_);
    manager = std::move(manager_);
  }
  if (manager != nullptr) {  // Outside the lock: a manager may deliver one more update while it stops.
    manager->stopUpdatingLocation();
    manager->clearDelegate();
  }
}

std::optional<Position> Location::fetched() const {
  const MutexLock lock(mutex_);
  return position_;
}

}  // namespace kesu
