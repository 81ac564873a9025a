#pragma once

#include <kesu/platform/LocaleService.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu {

/// The files with the system's time zone; tests use files of their own.
struct ZoneFiles {
  std::string localtime = "/etc/localtime";  ///< A link into the zone database.
  std::string timezone = "/etc/timezone";    ///< The zone's name, where `localtime` is no link.
};

/// Locale and time zone from the environment and the system's files.
///
/// Locale: LC_ALL, else LC_MESSAGES, else LANG. "C", "POSIX" and nothing give "en" without a country. Languages:
/// LANGUAGE unless the locale is "C" or "POSIX", else the locale's. Both are read on first use and after refresh().
///
/// Zone: TZ, else /etc/localtime. A change is seen by refresh(), and by itself within a minute of records.
///
/// Timestamps are always Gregorian with ASCII digits, whatever the locale: the service reads them. Only
/// formatWeekYearDay() and the locale's own texts use ICU, whose first call takes some 50 ms: not at start-up.
class LinuxLocale final : public LocaleService {
 public:
  explicit LinuxLocale(ZoneFiles files = {});
  ~LinuxLocale() override;

  std::string localeIdentifier() override;
  std::string countryCode() override;
  std::vector<std::string> preferredLanguages() override;
  std::string calendarIdentifier() override;
  std::string timeZoneName() override;
  std::string timeZoneAbbreviation(double secondsSince1970) override;
  LocalTime localTime(double secondsSince1970) override;
  std::string formatTimestamp(double secondsSince1970) override;
  std::string formatWeekYearDay(double secondsSince1970) override;
  void refresh() override;

 private:
  struct Region;
  class DayFormatter;

  /// A timestamp of one minute, whose seconds are filled in.
  struct Minute {
    std::int64_t number = INT64_MIN;  ///< Minutes since 1970.
    std::string text;
  };

  Region& region() KESU_REQUIRES(mutex_);
  void noticeZoneChange(std::int64_t minute);
  bool keepMinute(std::int64_t minute) KESU_REQUIRES(mutex_);

  const ZoneFiles files_;
  std::atomic<std::int64_t> checkedMinute_{INT64_MIN};
  Mutex mutex_;
  Minute minute_ KESU_GUARDED_BY(mutex_);
  std::unique_ptr<Region> region_ KESU_GUARDED_BY(mutex_);
  std::unique_ptr<DayFormatter> dayFormatter_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu
