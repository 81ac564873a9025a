#include "lifecycle/WeekCalendar.h"

#include <gtest/gtest.h>
#include <time.h>

#include "support/KesuPriorityLogger.h"
#include "testing/CalendarTest.h"

namespace kesu {
namespace {

using testing::at;
using testing::kBerlin;
using testing::kKathmandu;
using testing::kLordHowe;
using testing::kUtc;
using testing::Zone;

constexpr double kDay = 86400.0;

using WeekCalendarTest = testing::CalendarTest;

TEST_F(WeekCalendarTest, NumbersWeeksFromTheFirstWholeOne) {
  for (double day = at(1969, 12, 1); day < at(2040, 1, 10); day += kDay) {
    const CalendarComponents found = calendar.components(day);
    // "%W" counts Monday weeks of its year and calls the days before the first one week 0.
    auto seconds = static_cast<time_t>(day);
    tm fields{};
    ::gmtime_r(&seconds, &fields);
    char week[8];
    std::strftime(week, sizeof week, "%W", &fields);
    if (std::string(week) == "00") {
      seconds -= (fields.tm_yday + 1) * 86400;
      ::gmtime_r(&seconds, &fields);
      std::strftime(week, sizeof week, "%W", &fields);
    }
    ASSERT_EQ(found.weekOfYear, std::stoi(week)) << day;
    ASSERT_EQ(found.weekBasedYear, fields.tm_year + 1900) << day;
  }
  EXPECT_EQ(calendar.components(at(2016, 1, 3)).weekBasedYear, 2015);
  EXPECT_EQ(calendar.components(at(2013, 1, 1)).weekOfYear, 53) << "of a leap year that began on a Sunday";
}

TEST_F(WeekCalendarTest, LogsTheFirstWeekdayOnce) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  calendar.dayStringFromToday(1, 0.0);
  calendar.components(0.0);
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "[KesuManager:1666]First weekDay = 2");
}

TEST_F(WeekCalendarTest, KeepsTheTimeOfDayWhenItCountsDays) {
  const struct {
    const char* what;
    const Zone& zone;
    double from;
    int days;
    double to;
  } rows[] = {{"same day", kBerlin, at(2017, 3, 27, 8), 0, at(2017, 3, 27, 8)},
              {"after the spring change", kBerlin, at(2017, 3, 27, 8), -1, at(2017, 3, 26, 8)},
              {"over the spring change", kBerlin, at(2017, 3, 27, 8), -2, at(2017, 3, 25, 9)},
              {"into the skipped hour", kBerlin, at(2017, 3, 27, 0, 30), -1, at(2017, 3, 26, 1, 30)},
              {"forward into it", kBerlin, at(2017, 3, 25, 1, 30), 1, at(2017, 3, 26, 1, 30)},
              {"over the autumn change", kBerlin, at(2017, 10, 30, 9), -2, at(2017, 10, 28, 8)},
              {"from the repeated hour", kBerlin, at(2017, 10, 29, 0, 30), -1, at(2017, 10, 28, 0, 30)},
              {"from its second half", kBerlin, at(2017, 10, 29, 1, 30), -1, at(2017, 10, 28, 0, 30)},
              {"a change of half an hour", kLordHowe, at(2017, 10, 2, 1), -2, at(2017, 9, 30, 1, 30)},
              {"leap day", kUtc, at(2016, 3, 1, 12), -1, at(2016, 2, 29, 12)},
              {"before the epoch", kUtc, at(1970, 1, 1, 1), -1, at(1969, 12, 31, 1)},
              {"after 2038", kKathmandu, at(2038, 1, 20, 4), -1, at(2038, 1, 19, 4)}};
  for (const auto& row : rows) {
    moveTo(row.zone);
    EXPECT_EQ(calendar.addingDays(row.from, row.days), row.to) << row.what;
  }
}

TEST_F(WeekCalendarTest, NamesDaysByGmt) {
  EXPECT_EQ(calendar.dayStringFromToday(0, 0.0), "19700101");
  EXPECT_EQ(calendar.dayStringFromToday(1, 0.0), "19691231");
  moveTo(kKathmandu);
  EXPECT_EQ(calendar.dayStringFromToday(0, at(2017, 3, 15, 20, 15)), "20170315");
  moveTo(kBerlin);
  EXPECT_EQ(calendar.dayStringFromToday(1, at(2017, 3, 27, 23, 30)), "20170326");
  // Kept: shifted by the summer offset of now, the winter day begins an hour late.
  EXPECT_EQ(calendar.dayStringFromToday(3, at(2017, 3, 27, 23, 30)), "20170324");
  const double summer = at(2017, 7, 1, 12);
  EXPECT_EQ(calendar.gmtDateComponents(summer, summer).time.hour, 12);
  EXPECT_EQ(calendar.gmtDateComponents(summer, at(2017, 1, 1)).time.hour, 13) << "the offset of now, not its own";
  EXPECT_EQ(calendar.gmtDateComponents(at(2017, 1, 1, 12), summer).time.hour, 11);
}

}  // namespace
}  // namespace kesu
