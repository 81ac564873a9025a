#pragma once

#include <kesu/platform/LocaleService.h>

#include <atomic>
#include <string>

namespace kesu {

/// Calendar fields of an instant, with the week it lies in.
struct CalendarComponents {
  LocalTime time;
  int weekOfYear = 1;
  int weekBasedYear = 1970;
};

/// The week of a day. Pure. Weeks begin on Monday.
/// Kept: the first week of a year is its first whole Monday-to-Sunday week; the days before it belong to the last week
/// of the year before. (The international standard asks for four days only.)
CalendarComponents withWeek(const LocalTime& time);

/// "%ld%02ld%02ld": year, month and day, eight digits.
std::string dayText(const LocalTime& time);

/// The calendar by which usage and periods are counted. Any thread.
class WeekCalendar {
 public:
  explicit WeekCalendar(LocaleService& locale) : locale_(locale) {}

  /// The fields of an instant in the device's time zone.
  CalendarComponents components(double secondsSince1970);

  /// The same for GMT. Kept: the instant is shifted by the offset of `now`, not by its own, so that on the far side of
  /// a daylight-saving change it is an hour off.
  CalendarComponents gmtDateComponents(double secondsSince1970, double now);

  /// The GMT day string of the day `days` days before `now`.
  std::string dayStringFromToday(int days, double now);

  /// The instant `days` days after (before, when negative) with the same time on the clock. A time that a
  /// daylight-saving change skips moves forward.
  double addingDays(double secondsSince1970, int days);

 private:
  int secondsFromGmt(double secondsSince1970) { return locale_.localTime(secondsSince1970).secondsFromGmt; }

  LocaleService& locale_;
  std::atomic<bool> created_{false};
};

}  // namespace kesu
