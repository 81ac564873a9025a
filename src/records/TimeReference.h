#pragma once

namespace kesu {

/// Seconds from 1970-01-01 to 2001-01-01, both 00:00:00 UTC: the reference date of file names and timers.
inline constexpr double kReferenceDateSince1970 = 978307200.0;

/// Seconds from 2001-01-01 00:00:00 UTC to 2016-01-27 07:53:20 UTC, the origin of timer references.
inline constexpr double kTimerOriginSince2001 = 475574000.0;

/// Returns the timer clock: seconds since 2016-01-27 07:53:20 UTC, for measuring elapsed time.
constexpr double timerReferenceAt(double secondsSince1970) {
  return secondsSince1970 - kReferenceDateSince1970 - kTimerOriginSince2001;
}

}  // namespace kesu
