#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/UserDefaults.h>

#include <atomic>

#include "lifecycle/WeekCalendar.h"
#include "outbox/OutboxJournal.h"

namespace kesu {

/// Counts the seconds in the foreground and reports each threshold that is crossed once: 5, 10, 15 or 30 minutes within
/// 3, 5 or 7 days; 15, 30 or 60 minutes in all.
class UsageStatistics {
 public:
  UsageStatistics(UserDefaults& defaults, Clock& clock, WeekCalendar& calendar)
      : defaults_(defaults), clock_(clock), calendar_(calendar) {}

  /// Adds measured seconds, pending until they are added to the totals. Any thread.
  void addForegroundSeconds(double seconds);

  /// Adds the flags that are due to `traits`, and to `changes` the totals with the pending seconds and which flags are
  /// sent. The caller makes these in the step that takes the record, before the next call.
  /// Kept: once the three flags of the total are sent, the seconds stay pending.
  /// [fillInTraitsForAggregateAndActivations:]
  void fillInTraitsForAggregateAndActivations(Dictionary& traits, DefaultsChanges& changes);

 private:
  UserDefaults& defaults_;
  Clock& clock_;
  WeekCalendar& calendar_;
  std::atomic<double> secondsPartFromScreenFlow_{0.0};
};

}  // namespace kesu
