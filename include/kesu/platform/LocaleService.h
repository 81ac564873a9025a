#pragma once

#include <kesu/Export.h>

#include <string>
#include <vector>

namespace kesu {

/// Calendar fields of an instant in the device's time zone.
struct LocalTime {
  int year = 1970;
  int month = 1;      ///< 1 to 12.
  int day = 1;        ///< 1 to 31.
  int hour = 0;       ///< 0 to 23.
  int minute = 0;     ///< 0 to 59.
  int second = 0;     ///< 0 to 60.
  int weekday = 1;    ///< 1 Sunday to 7 Saturday.
  int dayOfYear = 1;  ///< 1 to 366.
  int secondsFromGmt = 0;
};

/// Locale, languages and time zone of the device. Callable from any thread; never fails (texts may be empty).
class KESU_API LocaleService {
 public:
  virtual ~LocaleService() = default;

  virtual std::string localeIdentifier() = 0;                 ///< Such as "en_US@calendar=gregorian".
  virtual std::string countryCode() = 0;                      ///< Such as "US"; "" when unknown.
  virtual std::vector<std::string> preferredLanguages() = 0;  ///< Most preferred first, such as "en-US".
  virtual std::string calendarIdentifier() = 0;               ///< Such as "gregorian".

  virtual std::string timeZoneName() = 0;                                 ///< Such as "Europe/Berlin"; "" when unknown.
  virtual std::string timeZoneAbbreviation(double secondsSince1970) = 0;  ///< Such as "CET".
  virtual LocalTime localTime(double secondsSince1970) = 0;

  /// Formats the pattern "yyyy-MM-dd HH:mm:ss Z" (2017-03-15 12:02:00 +0000), in the device's zone.
  virtual std::string formatTimestamp(double secondsSince1970) = 0;

  /// Formats the pattern "YYYYMMdd", whose year is the locale's week-based year, in the device's zone.
  virtual std::string formatWeekYearDay(double secondsSince1970) = 0;

  /// Forgets what was read: the user has changed locale, languages or time zone.
  virtual void refresh() {}
};

}  // namespace kesu
