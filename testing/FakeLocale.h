#pragma once

#include <kesu/platform/LocaleService.h>

#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "platform/CalendarFields.h"

namespace kesu::testing {

/// A locale whose answers are fields, in a zone whose offset is fixed but for the changes that a test names. Its
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

  int refreshCount = 0;  ///< How often it was told to forget what it has read.
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
