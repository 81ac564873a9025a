#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/LocaleService.h>
#include <kesu/platform/UserDefaults.h>

#include "lifecycle/WeekCalendar.h"
#include "outbox/OutboxJournal.h"

namespace kesu {

/// Milestones of launches and resumes, each sent once per installation: the third, fifth and tenth; use on 3, 5 and 7
/// days; use on 2 and 3 of the last 7 days. Each operation adds what is due to `flags`, and to `changes` what is
/// counted and which flags are sent. The caller makes these in the step that takes the record, before the next call.
class Activations {
 public:
  Activations(UserDefaults& defaults, Clock& clock, LocaleService& locale, WeekCalendar& calendar)
      : defaults_(defaults), clock_(clock), locale_(locale), calendar_(calendar) {}

  /// Counts launches and resumes up to ten. Ignores other states. [activationForLR:theState:]
  void activationForLR(Dictionary& flags, DefaultsChanges& changes, char state);

  /// Counts days of use. Ignores other states. [activationsForUniqueDays:theState:]
  void activationsForUniqueDays(Dictionary& flags, DefaultsChanges& changes, char state);

 private:
  bool isSent(const char* flag) { return defaults_.boolean(flag); }
  void raiseWhen(bool due, Dictionary& flags, DefaultsChanges& changes, const char* flag);
  std::size_t daysOfUseInLastWeek(const Array& days, double now);

  UserDefaults& defaults_;
  Clock& clock_;
  LocaleService& locale_;
  WeekCalendar& calendar_;
};

}  // namespace kesu
