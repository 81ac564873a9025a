#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/UserDefaults.h>

#include <atomic>
#include <string>

#include "foundation/Mutex.h"
#include "lifecycle/WeekCalendar.h"

namespace kesu {

/// Counts the seconds in the foreground and reports each threshold that is crossed once: 5, 10, 15 or 30 minutes within
/// 3, 5 or 7 days; 15, 30 or 60 minutes in all. Any thread.
class UsageStatistics {
 public:
  UsageStatistics(UserDefaults& defaults, Clock& clock, WeekCalendar& calendar)
      : defaults_(defaults), clock_(clock), calendar_(calendar) {}

  /// Adds measured seconds, pending until they are added to the totals.
  void addForegroundSeconds(double seconds);

  /// Adds the pending seconds to the totals, and the flags that are due to `traits`.
  /// Kept: once the three flags of the total are sent, the seconds stay pending.
  /// [fillInTraitsForAggregateAndActivations:]
  void fillInTraitsForAggregateAndActivations(Dictionary& traits);

 private:
  void appUsageStat(const std::string& today, Dictionary& traits, int days, double now, double pending)
      KESU_REQUIRES(mutex_);
  void clearPastWeeksUsageFromToday(double now);
  bool raiseOnce(Dictionary& traits, const std::string& flag);

  UserDefaults& defaults_;
  Clock& clock_;
  WeekCalendar& calendar_;

  Mutex mutex_;  // One report at a time; locked while user defaults are written.

  // Not behind the mutex: a screen that closes, and whoever posts meanwhile, would wait for the disk.
  std::atomic<double> secondsPartFromScreenFlow_{0.0};
};

}  // namespace kesu
