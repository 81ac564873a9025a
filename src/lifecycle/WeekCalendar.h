#pragma once

#include <kesu/platform/LocaleService.h>

#include <atomic>
#include <string>

namespace kesu {

inline constexpr double kSecondsPerDay = 86400.0;

/// Calendar fields of an instant and of its week.
struct CalendarComponents {
  LocalTime time;
  int weekOfYear = 1;
  int weekBasedYear = 1970;
};

/// The calendar by which usage and periods are counted. Any thread.
///
/// Kept: weeks begin on Monday, and the first week of a year is its first whole one; the days before it belong to the
/// last week of the year before. (The international standard asks for four days only.)
class WeekCalendar {
 public:
  explicit WeekCalendar(LocaleService& locale) : locale_(locale) {}

  /// Returns the fields of an instant in the device's time zone.
  CalendarComponents components(double secondsSince1970);

  /// Returns the fields of an instant in GMT. Kept: the instant is shifted by the offset of `now`, not by its own, so
  /// that on the far side of a daylight-saving change it is an hour off.
  CalendarComponents gmtDateComponents(double secondsSince1970, double now);

  /// Returns the day `days` days before `now` in GMT as eight digits: year, month, day.
  std::string dayStringFromToday(int days, double now);

  /// Returns the instant `days` days later (earlier, when negative) at the same local time. A time that a
  /// daylight-saving change skips moves forward.
  double addingDays(double secondsSince1970, int days);

 private:
  int secondsFromGmt(double secondsSince1970) { return locale_.localTime(secondsSince1970).secondsFromGmt; }

  LocaleService& locale_;
  std::atomic<bool> created_{false};
};

}  // namespace kesu
