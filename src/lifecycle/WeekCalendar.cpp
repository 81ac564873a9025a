#include "lifecycle/WeekCalendar.h"

#include <algorithm>
#include <cstdio>

#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr int kDaysPerWeek = 7;

/// Days since Monday, of a weekday from 1 (Sunday) to 7.
int daysSinceMonday(int weekday) {
  return (weekday + 5) % kDaysPerWeek;
}

/// The number of weeks that have begun in the year by this day; 0 before its first Monday.
int weeksBegun(int dayOfYear, int weekday) {
  return (dayOfYear - 1 + kDaysPerWeek - daysSinceMonday(weekday)) / kDaysPerWeek;
}

bool isLeapYear(int year) {
  return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

CalendarComponents withWeek(const LocalTime& time) {
  const int weeks = weeksBegun(time.dayOfYear, time.weekday);
  if (weeks > 0) {
    return {time, weeks, time.year};
  }
  const int lastDay = isLeapYear(time.year - 1) ? 366 : 365;
  const int weekdayOfLastDay = (time.weekday - 1 - time.dayOfYear % kDaysPerWeek + kDaysPerWeek) % kDaysPerWeek + 1;
  return {time, weeksBegun(lastDay, weekdayOfLastDay), time.year - 1};
}

}  // namespace

CalendarComponents WeekCalendar::components(double secondsSince1970) {
  if (!created_.exchange(true, std::memory_order_relaxed)) {
    KESU_LOG_AT(3, "KesuManager", 1666, "First weekDay = %d", 2);
  }
  return withWeek(locale_.localTime(secondsSince1970));
}

CalendarComponents WeekCalendar::gmtDateComponents(double secondsSince1970, double now) {
  return components(secondsSince1970 - secondsFromGmt(now));
}

std::string WeekCalendar::dayStringFromToday(int days, double now) {
  const LocalTime day = gmtDateComponents(addingDays(now, -days), now).time;
  char text[40];  // Wide enough for three whole ints, though a day has eight digits.
  std::snprintf(text, sizeof text, "%d%02d%02d", day.year, day.month, day.day);
  return text;
}

double WeekCalendar::addingDays(double secondsSince1970, int days) {
  // The offset there is known only once the instant is, so a first guess is corrected by the offset found at it. Two
  // offsets that disagree mean the hour that a change skips: the later instant is the one after it.
  const double wallClock = secondsSince1970 + secondsFromGmt(secondsSince1970) + days * kSecondsPerDay;
  const int offset = secondsFromGmt(secondsSince1970 + days * kSecondsPerDay);
  const double first = wallClock - offset;
  const int offsetThere = secondsFromGmt(first);
  if (offsetThere == offset) {
    return first;
  }
  const double second = wallClock - offsetThere;
  return secondsFromGmt(second) == offsetThere ? second : std::max(first, second);
}

}  // namespace kesu
