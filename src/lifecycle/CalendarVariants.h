#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/LocaleService.h>
#include <kesu/platform/UserDefaults.h>

#include "foundation/Mutex.h"
#include "lifecycle/WeekCalendar.h"
#include "outbox/OutboxJournal.h"

namespace kesu {

/// Reports each new hour, day, week, month and quarter once. Any thread.
class CalendarVariants {
 public:
  CalendarVariants(UserDefaults& defaults, Clock& clock, LocaleService& locale, WeekCalendar& calendar)
      : defaults_(defaults), clock_(clock), locale_(locale), calendar_(calendar) {}

  /// Adds the variants that are due. If `flags` then has any entry, now becomes the instant to which the next call
  /// compares; that of the next process is in `changes`, which the caller makes in the step that takes the record.
  /// [calculateVariantsForDMWQ:]
  void calculateVariantsForDMWQ(Dictionary& flags, DefaultsChanges& changes);

 private:
  UserDefaults& defaults_;
  Clock& clock_;
  LocaleService& locale_;
  WeekCalendar& calendar_;

  Mutex mutex_;
  double dLastSeen_ KESU_GUARDED_BY(mutex_) = 0.0;  // Seconds since 1970; 0 until it is loaded.
};

}  // namespace kesu
