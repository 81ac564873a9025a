#pragma once

#include <kesu/platform/LocaleService.h>

#include <chrono>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "platform/CalendarFields.h"

namespace kesu::testing {

/// The calendar fields of an instant in a zone that is `secondsFromGmt` east of Greenwich (Gregorian calendar, also
/// before 1582), clamped as calendarSeconds() does.
inline LocalTime calendarFields(double secondsSince1970, int secondsFromGmt) {
  using std::chrono::days;
  const std::chrono::sys_seconds instant{std::chrono::seconds(calendarSeconds(secondsSince1970) + secondsFromGmt)};
  const auto day = std::chrono::floor<days>(instant);
  const std::chrono::year_month_day date{day};
  const std::chrono::hh_mm_ss clock{instant - day};
  LocalTime time;
  time.year = static_cast<int>(date.year());
  time.month = static_cast<int>(static_cast<unsigned>(date.month()));
  time.day = static_cast<int>(static_cast<unsigned>(date.day()));
  time.hour = static_cast<int>(clock.hours().count());
  time.minute = static_cast<int>(clock.minutes().count());
  time.second = static_cast<int>(clock.seconds().count());
  time.weekday = static_cast<int>(std::chrono::weekday(day).c_encoding()) + 1;
  const std::chrono::sys_days newYear{date.year() / std::chrono::January / 1};
  time.dayOfYear = static_cast<int>((day - newYear).count()) + 1;
  time.secondsFromGmt = secondsFromGmt;
  return time;
}

/// A locale with public fields, in a zone whose offset is fixed but for the changes that a test sets. Its
/// week-based year is that of the United States: weeks start on Sunday, and the week with the first of January is the
/// first of its year.
class FakeLocale : public LocaleService {
 public:
  std::string localeIdentifier() override { return identifier; }
  std::string countryCode() override { return country; }
  std::vector<std::string> preferredLanguages() override { return languages; }
  std::string calendarIdentifier() override { return calendar; }
  std::string timeZoneName() override { return zoneName; }
  std::string timeZoneAbbreviation(double /*secondsSince1970*/) override { return zoneAbbreviation; }

  LocalTime localTime(double secondsSince1970) override {
    const auto next = offsetChanges.upper_bound(secondsSince1970);
    const int offset = next == offsetChanges.begin() ? secondsFromGmt : std::prev(next)->second;
    return calendarFields(secondsSince1970, offset);
  }
  std::string formatTimestamp(double secondsSince1970) override { return timestampText(localTime(secondsSince1970)); }

  std::string formatWeekYearDay(double secondsSince1970) override {
    const LocalTime time = localTime(secondsSince1970);
    const double saturday = secondsSince1970 + 86400.0 * (7 - time.weekday);
    const std::string day = timestampText(time);
    return timestampText(localTime(saturday)).substr(0, 4) + day.substr(5, 2) + day.substr(8, 2);
  }

  void refresh() override { ++refreshCount; }

  int refreshCount = 0;  ///< Calls of refresh().
  std::string identifier = "en_US";
  std::string country = "US";
  std::string calendar = "gregorian";
  std::vector<std::string> languages = {"en-US"};
  std::string zoneName = "UTC";
  std::string zoneAbbreviation = "UTC";
  int secondsFromGmt = 0;               ///< Before the first change.
  std::map<double, int> offsetChanges;  ///< Seconds since 1970 -> seconds from GMT from then on.
};

}  // namespace kesu::testing
