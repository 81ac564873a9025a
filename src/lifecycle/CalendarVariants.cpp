#include "lifecycle/CalendarVariants.h"

#include <initializer_list>
#include <string>

#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

/// The two instants whose periods are compared, local and GMT.
struct PeriodPair {
  CalendarComponents localNow;
  CalendarComponents localLast;
  CalendarComponents gmtNow;
  CalendarComponents gmtLast;
};

std::string joined(std::initializer_list<int> numbers) {
  std::string text;
  for (const int number : numbers) {
    text += (text.empty() ? "" : "-") + std::to_string(number);
  }
  return text;
}

int quarterOf(const LocalTime& time) {
  return (time.month - 1) / 3 + 1;
}

bool sameMonth(const LocalTime& left, const LocalTime& right) {
  return left.year == right.year && left.month == right.month;
}

bool sameDay(const LocalTime& left, const LocalTime& right) {
  return sameMonth(left, right) && left.day == right.day;
}

bool sameHour(const LocalTime& left, const LocalTime& right) {
  return sameDay(left, right) && left.hour == right.hour;
}

/// Adds an entry for each period (local hour, hour, day, month, quarter, week) that has changed since last time. Pure.
void addChangedPeriods(Dictionary& flags, const PeriodPair& pair, const std::string& timeZoneName) {
  const LocalTime& local = pair.localNow.time;
  if (!sameHour(local, pair.localLast.time)) {
    flags.set(k_LocalHour, joined({local.year, local.month, local.day, local.hour}));
  }
  const LocalTime& now = pair.gmtNow.time;
  const LocalTime& last = pair.gmtLast.time;
  if (!sameHour(now, last)) {
    flags.set(k_Hour, joined({now.year, now.month, now.day, now.hour}));
  }
  if (!sameDay(now, last)) {
    flags.set(k_Day, joined({now.year, now.month, now.day}));
    flags.set(k_localTimezoneName, timeZoneName);
  }
  if (!sameMonth(now, last)) {
    flags.set(k_Month, joined({now.year, now.month}));
  }
  if (now.year != last.year || quarterOf(now) != quarterOf(last)) {
    flags.set(k_Quarter, joined({now.year, quarterOf(now)}));
  }
  // By the year of the week: the new year may begin inside the last week of the old one.
  const CalendarComponents& week = pair.gmtNow;
  if (week.weekOfYear != pair.gmtLast.weekOfYear || week.weekBasedYear != pair.gmtLast.weekBasedYear) {
    flags.set(k_Week, joined({week.weekBasedYear, week.weekOfYear}));
  }
}

}  // namespace

void CalendarVariants::calculateVariantsForDMWQ(Dictionary& flags, DefaultsChanges& changes) {
  const MutexLock lock(mutex_);
  if (dLastSeen_ == 0.0) {  // Kept: read once per run, so that a change of the key leaves the time in memory.
    dLastSeen_ = defaults_.real(kLastSeenDefault);
  }
  const double now = clock_.now();
  const PeriodPair pair = {calendar_.components(now), calendar_.components(dLastSeen_),
                           calendar_.gmtDateComponents(now, now), calendar_.gmtDateComponents(dLastSeen_, now)};
  addChangedPeriods(flags, pair, locale_.timeZoneName());
  if (!flags.empty()) {
    dLastSeen_ = now;
    changes.push_back(DefaultsChange::set(kLastSeenDefault, now));
  }
}

}  // namespace kesu
