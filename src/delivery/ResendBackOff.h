#pragma once

#include <optional>

namespace kesu {

/// Decides when stored records are sent again. Pure but for its state; confined to its owner. Times are seconds on a
/// clock that never jumps.
///
/// The first delivery after a record had to be stored is the news that the collector answers again. Passes that leave
/// records behind are followed by a pause of 1, 2, 4 ... 60 s, so that a collector which accepts connections and
/// refuses records is not sent all of them at each of its signs of life.
class ResendBackOff {
 public:
  static constexpr double kFirstPauseSeconds = 1.0;
  static constexpr double kLongestPauseSeconds = 60.0;

  /// Returns the seconds until a pass may start; 0: now.
  double secondsUntilNext(double now) const;

  /// Notes the end of a pass: whether every record that it sent was delivered.
  void passEnded(bool isAllDelivered, double now);

  /// Notes that a first attempt failed and its record is kept.
  void recordKept() { hasNewlyKept_ = true; }

  /// Notes that a first attempt was delivered. Returns whether it is the news that a pass is worth while.
  bool recordDelivered();

 private:
  bool hasNewlyKept_ = false;
  double pauseSeconds_ = 0.0;
  double notBefore_ = 0.0;
};

}  // namespace kesu
