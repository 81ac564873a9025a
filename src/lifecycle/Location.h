#pragma once

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

/// The last known position, for the common columns. Nothing on a television makes a location manager: the checks that
/// the timer asks for do nothing, so positions come only from a platform that hands its manager over. Any thread.
class Location {
 public:
  /// [checkAndEnableLocations:] Kept: empty on televisions, though the timer still calls it.
  void checkAndEnableLocations() {}

  /// Takes over the manager whose updates follow.
  void setManager(std::unique_ptr<LocationManager> manager);

  /// [locationManager:didUpdateLocations:] Keeps the last position of an update and ends the updates. An empty update
  /// changes nothing. Kept: signs are dropped, southern and western positions read as northern and eastern ones.
  void didUpdateLocations(const std::vector<Position>& positions);

  /// [stopUpdatingLocationWithMessage:] Ends the updates and lets the manager go, if there is one.
  void stopUpdatingLocation();

  /// Forgets that a position was fetched.
  void reset();

  /// The position, once one was fetched.
  std::optional<Position> fetched() const;

 private:
  mutable Mutex mutex_;
  std::unique_ptr<LocationManager> manager_ KESU_GUARDED_BY(mutex_);
  std::optional<Position> position_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu
