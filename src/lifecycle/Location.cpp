#include "lifecycle/Location.h"

#include <cmath>
#include <utility>

namespace kesu {

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
  if (manager != nullptr) {
    manager->stopUpdatingLocation();
    manager->clearDelegate();
  }
}

void Location::reset() {
  const MutexLock lock(mutex_);
  position_.reset();
}

std::optional<Position> Location::fetched() const {
  const MutexLock lock(mutex_);
  return position_;
}

}  // namespace kesu
