#pragma once

#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// A point in time as a calendar and a clock in UTC show it, whole seconds, years 0 to 9999.
struct CivilTime {
  int year = 1970;
  int month = 1;  ///< 1 to 12.
  int day = 1;    ///< 1 to 31.
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// Converts a date; the fraction of its second is dropped (toward the past). Nothing for not-a-number and for dates
/// outside the years 0 to 9999. Any thread.
std::optional<CivilTime> civilTime(Date date);

/// Formats "2017-03-15T12:02:00", with the separator in place of the "T".
std::string civilText(const CivilTime& time, char separator);

/// Reads exactly "2017-03-15T12:02:00Z"; nothing for any other text, and when there is no such day or time.
std::optional<Date> parseIsoDate(std::string_view text);

}  // namespace kesu
