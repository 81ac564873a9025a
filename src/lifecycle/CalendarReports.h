#pragma once

#include <kesu/platform/Platform.h>

#include "lifecycle/Activations.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/UsageStatistics.h"
#include "lifecycle/WeekCalendar.h"

namespace kesu {

/// What is counted by the calendar and reported once: new periods, usage, activations.
struct CalendarReports {
  explicit CalendarReports(Platform& platform)
      : calendar(platform.locale),
        variants(platform.defaults, platform.clock, platform.locale, calendar),
        usage(platform.defaults, platform.clock, calendar),
        activations(platform.defaults, platform.clock, platform.locale, calendar) {}

  WeekCalendar calendar;
  CalendarVariants variants;
  UsageStatistics usage;
  Activations activations;
};

}  // namespace kesu
