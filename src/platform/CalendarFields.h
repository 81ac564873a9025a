#pragma once

#include <kesu/platform/LocaleService.h>

#include <cstdint>
#include <string>

namespace kesu {

/// Formats the pattern "yyyy-MM-dd HH:mm:ss Z": "2017-03-15 12:02:00 +0000". An offset with seconds (zones of the
/// nineteenth century) has them behind its minutes.
std::string timestampText(const LocalTime& time);

/// Rounds `secondsSince1970` down to whole seconds and clamps them to the years 1 to 9999, which every calendar can
/// show in every zone. Not-a-number is 0.
std::int64_t calendarSeconds(double secondsSince1970);

}  // namespace kesu
