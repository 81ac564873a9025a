#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/LocaleService.h>
#include <kesu/platform/UserDefaults.h>

#include "foundation/Mutex.h"
#include "lifecycle/WeekCalendar.h"

namespace kesu {

/// The two instants between which periods are compared, local and GMT.
struct PeriodPair {
  CalendarComponents localNow;
  CalendarComponents localLast;
  CalendarComponents gmtNow;
  CalendarComponents gmtLast;
};

/// Adds an entry for each period (local hour, hour, day, month, quarter, week) that is another one now than last time.
/// Pure.
void addChangedPeriods(Dictionary& flags, const PeriodPair& pair, const std::string& timeZoneName);

/// Reports each new hour, day, week, month and quarter once. Any thread.
class CalendarVariants {
 public:
  CalendarVariants(UserDefaults& defaults, Clock& clock, LocaleService& locale, WeekCalendar& calendar)
      : defaults_(defaults), clock_(clock), locale_(locale), calendar_(calendar) {}

  /// [calculateVariantsForDMWQ:] Adds the variants that are due. When `flags` then holds anything at all, now becomes
  /// the instant to which the next call compares.
  void calculateVariantsForDMWQ(Dictionary& flags);

 private:
  UserDefaults& defaults_;
  Clock& clock_;
  LocaleService& locale_;
  WeekCalendar& calendar_;

  Mutex mutex_;
  double dLastSeen_ KESU_GUARDED_BY(mutex_) = 0.0;  // Seconds since 1970; 0 until it is loaded.
};

}  // namespace kesu
