#pragma once

#include <kesu/platform/MainLoop.h>

#include <memory>
#include <optional>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu {

/// A position: degrees and metres.
struct Position {
  double latitude = 0.0;
  double longitude = 0.0;
  double altitude = 0.0;
};

/// A running location service of a platform that has one.
class LocationManager {
 public:
  virtual ~LocationManager() = default;

  virtual void stopUpdatingLocation() = 0;
  virtual void clearDelegate() = 0;
};

/// The last known position, for the common columns. No television has a location service: the checks do nothing, and
/// positions come only from a platform that sets a manager. Created on the main thread; any thread.
class Location {
 public:
  /// Schedules the repeating check, which ends with this object.
  explicit Location(MainLoop& mainLoop);
  ~Location();

  Location(const Location&) = delete;
  Location& operator=(const Location&) = delete;

  /// Returns the position, once one was fetched.
  std::optional<Position> fetched() const;

  /// Does nothing. Kept: the timer calls it all the same. [checkAndEnableLocations:]
  void checkAndEnableLocations() {}

  // Owed to hosts and to the agreed interface; no caller inside the library. A platform with a location service drives
  // its manager by these.

  /// Takes ownership of the manager whose updates follow.
  void setManager(std::unique_ptr<LocationManager> manager);

  /// Keeps the last position of an update and stops the updates. An empty update changes nothing. Kept: signs are
  /// dropped, southern and western positions read as northern and eastern ones. [locationManager:didUpdateLocations:]
  void didUpdateLocations(const std::vector<Position>& positions);

  /// Stops the updates and destroys the manager, if there is one. [stopUpdatingLocationWithMessage:]
  void stopUpdatingLocation();

 private:
  MainLoop& mainLoop_;
  MainLoop::TimerId timer_;
  mutable Mutex mutex_;
  std::unique_ptr<LocationManager> manager_ KESU_GUARDED_BY(mutex_);
  std::optional<Position> position_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu
