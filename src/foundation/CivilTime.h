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

/// The calendar's view of a date; the fraction of its second is dropped (toward the past). Nothing for not-a-number and
/// for dates outside the years 0 to 9999. Any thread.
std::optional<CivilTime> civilTime(Date date);

/// The date behind the calendar's view, or nothing when there is no such day or time. Any thread.
std::optional<Date> dateOf(const CivilTime& time);

/// "2017-03-15" and "12:02:00".
std::string dayText(const CivilTime& time);
std::string clockText(const CivilTime& time);

/// Reads exactly "2017-03-15T12:02:00Z", or nothing.
std::optional<Date> parseIsoDate(std::string_view text);

}  // namespace kesu
