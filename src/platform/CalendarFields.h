#pragma once

#include <kesu/platform/LocaleService.h>

#include <string>

namespace kesu {

/// The calendar fields of an instant in a zone that is `secondsFromGmt` east of Greenwich (Gregorian calendar, also
/// before 1582). Fractions are rounded down; what no calendar can hold (NaN, beyond the year 9999 or before the year 1)
/// counts as the nearest instant it can.
LocalTime calendarFields(double secondsSince1970, int secondsFromGmt);

/// Fields as text by the pattern "yyyy-MM-dd HH:mm:ss Z": "2017-03-15 12:02:00 +0000". An offset with seconds (zones of
/// the nineteenth century) has them behind its minutes.
std::string timestampText(const LocalTime& time);

/// `secondsSince1970` as whole seconds inside the range of calendarFields().
std::int64_t calendarSeconds(double secondsSince1970);

}  // namespace kesu
