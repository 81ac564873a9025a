#pragma once

#include <kesu/platform/LocaleService.h>

#include <string>
#include <vector>

#include "platform/CalendarFields.h"

namespace kesu::testing {

/// A locale whose answers are fields, in a zone with a fixed offset. Its week-based year is that of the United States:
/// weeks start on Sunday, and the week with the first of January is the first of its year.
class FakeLocale : public LocaleService {
 public:
  std::string localeIdentifier() override { return identifier; }
  std::string countryCode() override { return country; }
  std::vector<std::string> preferredLanguages() override { return languages; }
  std::string calendarIdentifier() override { return calendar; }
  std::string timeZoneName() override { return zoneName; }
  std::string timeZoneAbbreviation(double /*secondsSince1970*/) override { return zoneAbbreviation; }

  LocalTime localTime(double secondsSince1970) override { return calendarFields(secondsSince1970, secondsFromGmt); }
  std::string formatTimestamp(double secondsSince1970) override { return timestampText(localTime(secondsSince1970)); }

  std::string formatWeekYearDay(double secondsSince1970) override {
    const LocalTime time = localTime(secondsSince1970);
    const double saturday = secondsSince1970 + 86400.0 * (7 - time.weekday);
    const std::string day = timestampText(time);
    return timestampText(localTime(saturday)).substr(0, 4) + day.substr(5, 2) + day.substr(8, 2);
  }

  std::string identifier = "en_US";
  std::string country = "US";
  std::string calendar = "gregorian";
  std::vector<std::string> languages = {"en-US"};
  std::string zoneName = "UTC";
  std::string zoneAbbreviation = "UTC";
  int secondsFromGmt = 0;
};

}  // namespace kesu::testing
