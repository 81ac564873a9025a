#pragma once

#include <gtest/gtest.h>
#include <time.h>

#include <map>
#include <string>

#include "lifecycle/WeekCalendar.h"
#include "outbox/OutboxJournal.h"
#include "testing/Keys.h"
#include "testing/ScopedPlatform.h"

namespace kesu::testing {

/// An instant by its UTC calendar fields.
inline double at(int year, int month, int day, int hour = 0, int minute = 0) {
  tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  return static_cast<double>(::timegm(&fields));
}

/// The keys of flags, each of which has the value "1".
inline std::string flagsOf(const Dictionary& flags) {
  for (const auto& entry : flags) {
    EXPECT_TRUE(entry.value == Value("1") || !entry.key.starts_with("~a:")) << entry.key;
  }
  return keysOf(flags);
}

/// A time zone: its offset, and the offsets from certain instants on.
struct Zone {
  int secondsFromGmt;
  std::map<double, int> changes;
};

inline const Zone kUtc = {0, {}};
inline const Zone kBerlin = {3600, {{at(2017, 3, 26, 1), 7200}, {at(2017, 10, 29, 1), 3600}}};
inline const Zone kLordHowe = {39600, {{at(2017, 4, 1, 15), 37800}, {at(2017, 9, 30, 15, 30), 39600}}};
inline const Zone kKathmandu = {20700, {}};

/// A calendar on a platform of doubles, in a zone of choice.
class CalendarTest : public ::testing::Test {
 protected:
  void moveTo(const Zone& zone) {
    platform.locale.secondsFromGmt = zone.secondsFromGmt;
    platform.locale.offsetChanges = zone.changes;
  }

  /// Has one of the reports add its flags, and makes its changes; returns the flags.
  template <typename Report>
  Dictionary reported(Report report, Dictionary flags = {}) {
    DefaultsChanges changes;
    report(flags, changes);
    platform.defaults.apply(changes);
    platform.defaults.synchronize();
    return flags;
  }

  ScopedPlatform platform;
  WeekCalendar calendar{platform.locale};
};

}  // namespace kesu::testing
