#include <gtest/gtest.h>
#include <time.h>

#include <map>
#include <memory>

#include "lifecycle/Activations.h"
#include "lifecycle/CalendarVariants.h"
#include "lifecycle/UsageStatistics.h"
#include "lifecycle/WeekCalendar.h"
#include "records/DefaultsKeys.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

constexpr double kDay = 86400.0;

/// An instant by its UTC calendar fields.
double at(int year, int month, int day, int hour = 0, int minute = 0) {
  tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  return static_cast<double>(::timegm(&fields));
}

std::string keysOf(const Dictionary& flags) {
  std::string keys;
  for (const auto& entry : flags) {
    keys += (keys.empty() ? "" : " ") + entry.key;
    EXPECT_TRUE(entry.value == Value("1") || !entry.key.starts_with("~a:"));
  }
  return keys;
}

struct Zone {
  int secondsFromGmt;
  std::map<double, int> changes;
};

const Zone kUtc = {0, {}};
const Zone kBerlin = {3600, {{at(2017, 3, 26, 1), 7200}, {at(2017, 10, 29, 1), 3600}}};
const Zone kLordHowe = {39600, {{at(2017, 4, 1, 15), 37800}, {at(2017, 9, 30, 15, 30), 39600}}};
const Zone kKathmandu = {20700, {}};
const Zone kHonolulu = {-36000, {}};

class UsageTest : public ::testing::Test {
 protected:
  void moveTo(const Zone& zone) {
    platform.locale.secondsFromGmt = zone.secondsFromGmt;
    platform.locale.offsetChanges = zone.changes;
  }

  testing::ScopedPlatform platform;
  WeekCalendar calendar{platform.locale};
};

TEST_F(UsageTest, NumbersWeeksFromTheFirstWholeOne) {
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

TEST_F(UsageTest, LogsTheFirstWeekdayOnce) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  calendar.dayStringFromToday(1, 0.0);
  calendar.components(0.0);
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "[KesuManager:1666]First weekDay = 2");
}

TEST_F(UsageTest, KeepsTheTimeOfDayWhenItCountsDays) {
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

TEST_F(UsageTest, NamesDaysByGmt) {
  const struct {
    const Zone& zone;
    double now;
    int days;
    const char* day;
  } rows[] = {{kUtc, at(2016, 3, 1, 12), 1, "20160229"},
              {kUtc, at(2015, 3, 1, 12), 1, "20150228"},
              {kUtc, at(2017, 1, 3), 6, "20161228"},
              {kUtc, 0.0, 0, "19700101"},
              {kUtc, 0.0, 1, "19691231"},
              {kUtc, at(2038, 1, 19, 3, 15), 0, "20380119"},
              {kKathmandu, at(2017, 3, 15, 20, 15), 0, "20170315"},
              {kHonolulu, at(2017, 3, 16, 2), 0, "20170316"},
              {kBerlin, at(2017, 3, 26, 0, 30), 0, "20170326"},
              {kBerlin, at(2017, 3, 27, 23, 30), 1, "20170326"},
              // Kept: shifted by the summer offset of now, the winter day begins an hour late.
              {kBerlin, at(2017, 3, 27, 23, 30), 3, "20170324"}};
  for (const auto& row : rows) {
    moveTo(row.zone);
    EXPECT_EQ(calendar.dayStringFromToday(row.days, row.now), row.day) << row.now << " " << row.days;
  }
  moveTo(kBerlin);
  const double summer = at(2017, 7, 1, 12);
  EXPECT_EQ(calendar.gmtDateComponents(summer, summer).time.hour, 12);
  EXPECT_EQ(calendar.gmtDateComponents(summer, at(2017, 1, 1)).time.hour, 13) << "the offset of now, not its own";
  EXPECT_EQ(calendar.gmtDateComponents(at(2017, 1, 1, 12), summer).time.hour, 11);
}

class VariantsTest : public UsageTest {
 protected:
  /// What a new process reports that was last seen at `last`.
  Dictionary variants(double last, double now) {
    platform.defaults.set("lastSeen", last);
    platform.clock.set(now);
    Dictionary flags;
    CalendarVariants(platform.defaults, platform.clock, platform.locale, calendar).calculateVariantsForDMWQ(flags);
    return flags;
  }
};

TEST_F(VariantsTest, ReportsEachPeriodThatIsAnother) {
  platform.locale.zoneName = "";
  const struct {
    const Zone& zone;
    double last;
    double now;
    Dictionary variants;
  } rows[] = {{kUtc, at(2017, 3, 15, 12), at(2017, 3, 15, 12, 59), {}},
              {kUtc, at(2017, 3, 15, 12, 59), at(2017, 3, 15, 13), {{"~lh", "2017-3-15-13"}, {"~h", "2017-3-15-13"}}},
              {kUtc, at(2017, 3, 15, 13), at(2017, 3, 15, 12), {{"~lh", "2017-3-15-12"}, {"~h", "2017-3-15-12"}}},
              {kUtc,
               at(2017, 3, 15, 12),
               at(2017, 3, 16, 12),
               {{"~lh", "2017-3-16-12"}, {"~h", "2017-3-16-12"}, {"~d", "2017-3-16"}, {"ltz", ""}}},
              {kUtc,
               at(2017, 3, 31, 23),
               at(2017, 4, 1, 0),
               {{"~lh", "2017-4-1-0"},
                {"~h", "2017-4-1-0"},
                {"~d", "2017-4-1"},
                {"ltz", ""},
                {"~m", "2017-4"},
                {"~q", "2017-2"}}},
              {kUtc,
               at(2017, 3, 19, 12),
               at(2017, 3, 20, 12),
               {{"~lh", "2017-3-20-12"}, {"~h", "2017-3-20-12"}, {"~d", "2017-3-20"}, {"ltz", ""}, {"~w", "2017-12"}}},
              {kUtc,  // The new year begins inside the last week of the old one.
               at(2015, 12, 31, 12),
               at(2016, 1, 1, 12),
               {{"~lh", "2016-1-1-12"},
                {"~h", "2016-1-1-12"},
                {"~d", "2016-1-1"},
                {"ltz", ""},
                {"~m", "2016-1"},
                {"~q", "2016-1"}}},
              {kUtc,  // The same hour, day, month, quarter and week number, a year later.
               at(2017, 3, 15, 12),
               at(2018, 3, 15, 12),
               {{"~lh", "2018-3-15-12"},
                {"~h", "2018-3-15-12"},
                {"~d", "2018-3-15"},
                {"ltz", ""},
                {"~m", "2018-3"},
                {"~q", "2018-1"},
                {"~w", "2018-11"}}},
              {kKathmandu, at(2017, 3, 15, 12, 10), at(2017, 3, 15, 12, 20), {{"~lh", "2017-3-15-18"}}},
              {kKathmandu, at(2017, 3, 15, 12, 50), at(2017, 3, 15, 13, 10), {{"~h", "2017-3-15-13"}}},
              // The repeated local hour is no other one. Kept: shifted back over the change, GMT is an hour off.
              {kBerlin, at(2017, 10, 29, 0, 30), at(2017, 10, 29, 1, 30), {{"~h", "2017-10-29-2"}}}};
  for (const auto& row : rows) {
    moveTo(row.zone);
    const Dictionary found = variants(row.last, row.now);
    EXPECT_EQ(found, row.variants) << keysOf(found);
    EXPECT_EQ(platform.defaults.real("lastSeen"), row.variants.empty() ? row.last : row.now);
  }
}

TEST_F(VariantsTest, ReportsEveryPeriodAtFirst) {
  platform.locale.zoneName = "Europe/Berlin";
  moveTo(kBerlin);
  const Dictionary found = variants(0.0, at(2017, 12, 31, 23, 30));
  EXPECT_EQ(keysOf(found), "~lh ~h ~d ltz ~m ~q ~w");
  EXPECT_EQ(found, (Dictionary{{"~lh", "2018-1-1-0"},
                               {"~h", "2017-12-31-23"},
                               {"~d", "2017-12-31"},
                               {"ltz", "Europe/Berlin"},
                               {"~m", "2017-12"},
                               {"~q", "2017-4"},
                               {"~w", "2017-52"}}));
  EXPECT_EQ(platform.defaults.keptOnDisk().find("lastSeen")->realValue(), at(2017, 12, 31, 23, 30));
}

TEST_F(VariantsTest, RemembersTheReportWhateverElseItCarried) {
  CalendarVariants variants(platform.defaults, platform.clock, platform.locale, calendar);
  const double now = platform.clock.now();
  Dictionary first;
  variants.calculateVariantsForDMWQ(first);
  platform.clock.advance(60.0);
  Dictionary nothing;
  variants.calculateVariantsForDMWQ(nothing);
  EXPECT_TRUE(nothing.empty());
  EXPECT_EQ(platform.defaults.real("lastSeen"), now);
  platform.defaults.remove("lastSeen");  // As a change of the key does; the time in memory stays.
  Dictionary other = {{"~a:LR3", "1"}};
  variants.calculateVariantsForDMWQ(other);
  EXPECT_EQ(keysOf(other), "~a:LR3");
  EXPECT_EQ(platform.defaults.real("lastSeen"), now + 60.0);
}

class ActivationsTest : public UsageTest {
 protected:
  std::string launchOrResume(char state) {
    Dictionary flags;
    activations.activationForLR(flags, state);
    return keysOf(flags);
  }

  std::string useAt(double now) {
    platform.clock.set(now);
    Dictionary flags;
    for (const char state : {'b', 'l', 'r'}) {
      activations.activationsForUniqueDays(flags, state);
    }
    return keysOf(flags);
  }

  Array days() { return *platform.defaults.keptOnDisk().find("sevenDays")->array(); }

  Activations activations{platform.defaults, platform.clock, platform.locale, calendar};
};

TEST_F(ActivationsTest, CountsLaunchesAndResumesUpToTen) {
  const std::map<int, std::string> milestones = {{3, "~a:LR3"}, {5, "~a:LR5"}, {10, "~a:LR10"}};
  for (int count = 1; count <= 13; ++count) {
    const auto milestone = milestones.find(count);
    for (const char other : {'b', 't', 'a', 'd'}) {
      EXPECT_EQ(launchOrResume(other), "");
    }
    EXPECT_EQ(launchOrResume(count % 2 == 0 ? 'r' : 'l'), milestone != milestones.end() ? milestone->second : "");
    EXPECT_EQ(platform.defaults.keptOnDisk().find("lrc")->integerValue(), std::min(count, 10));
  }
}

TEST_F(ActivationsTest, CountsDaysInARow) {
  const std::map<int, std::string> raised = {{2, "~a:2DL7"}, {3, "~a:3UD ~a:3DL7"}, {5, "~a:5UD"}, {7, "~a:7UD"}};
  for (int day = 1; day <= 9; ++day) {
    const auto found = raised.find(day);
    EXPECT_EQ(useAt(at(2016, 2, 25 + day, 12)), found != raised.end() ? found->second : "") << day;
  }
  EXPECT_EQ(days().size(), 7U) << "once all flags are sent no day is kept any more";
  EXPECT_EQ(days().front(), Value("20160303"));
}

TEST_F(ActivationsTest, KeepsTheLastSevenDays) {
  for (int use = 0; use < 9; ++use) {
    const std::string flags = useAt(at(2017, 1, 1 + 7 * use));
    EXPECT_EQ(flags, use == 2 ? "~a:3UD" : use == 4 ? "~a:5UD" : use == 6 ? "~a:7UD" : "") << use;
    EXPECT_EQ(useAt(at(2017, 1, 1 + 7 * use, 23, 59)), "") << "one entry a day";
  }
  EXPECT_EQ(days(), (Array{"20170226", "20170219", "20170212", "20170205", "20170129", "20170122", "20170115"}));
}

TEST_F(ActivationsTest, SetsBackNothingWithTheClock) {
  useAt(at(2017, 1, 2));
  EXPECT_EQ(useAt(at(2017, 1, 1)), "") << "the day before lies in the future of the last seven days";
  EXPECT_EQ(useAt(at(2017, 1, 2)), "~a:3UD ~a:2DL7");
  EXPECT_EQ(days(), (Array{"20170102", "20170101", "20170102"}));
}

TEST_F(ActivationsTest, LooksForLocalDaysAmongGmtDays) {
  moveTo(kHonolulu);  // It is still the day before there.
  EXPECT_EQ(useAt(at(2017, 3, 15, 2)) + useAt(at(2017, 3, 16, 2)), "");
  EXPECT_EQ(useAt(at(2017, 3, 17, 2)), "~a:3UD ~a:2DL7");
}

TEST_F(ActivationsTest, LooksForDaysWithTheYearOfTheirWeek) {
  useAt(at(2017, 12, 30));
  EXPECT_EQ(useAt(at(2017, 12, 31)), "") << "looked for as 20181231";
  EXPECT_EQ(useAt(at(2018, 1, 1)), "~a:3UD ~a:2DL7") << "20180101 and 20171230";
}

class StatisticsTest : public UsageTest {
 protected:
  StatisticsTest() { platform.clock.set(at(2017, 3, 15, 12)); }

  std::string fill() {
    Dictionary traits;
    usage.fillInTraitsForAggregateAndActivations(traits);
    return keysOf(traits);
  }
  std::string use(double seconds) {
    usage.addForegroundSeconds(seconds);
    return fill();
  }
  void seed(const Dictionary& days) { platform.defaults.set("AppActivationUsage", days); }
  Dictionary stored() { return *platform.defaults.keptOnDisk().find("AppActivationUsage")->dictionary(); }
  void sendAll(std::initializer_list<const char*> flags) {
    for (const char* flag : flags) {
      platform.defaults.set(flag, true);
    }
  }
  void forgetEverything() {
    for (const std::string& key : platform.defaults.keys()) {
      platform.defaults.remove(key);
    }
  }

  UsageStatistics usage{platform.defaults, platform.clock, calendar};
};

TEST_F(StatisticsTest, CountsPendingSecondsUpToThreefold) {
  const struct {
    double seconds;
    const char* flags;
    int today;
  } rows[] = {
      {99.9, "", 297},
      {100.0, "~a:u5mo7D", 300},
      {299.0, "~a:u5mo5D ~a:u5mo7D ~a:u10mo7D", 897},
      {300.0, "~a:u5mo3D ~a:u5mo5D ~a:u10mo5D ~a:u5mo7D ~a:u10mo7D ~a:u15mo7D", 900},
      {600.0, "~a:u5mo3D ~a:u10mo3D ~a:u5mo5D ~a:u10mo5D ~a:u15mo5D ~a:u5mo7D ~a:u10mo7D ~a:u15mo7D ~a:u30mo7D", 1800}};
  for (const auto& row : rows) {
    forgetEverything();
    EXPECT_EQ(use(row.seconds), row.flags) << row.seconds;
    EXPECT_EQ(stored(), (Dictionary{{"20170315", row.today}}));
    EXPECT_EQ(platform.defaults.boolean("appExceeds7dayUsage"), row.seconds == 600.0);
    EXPECT_FALSE(platform.defaults.boolean("appExceeds5dayUsage"));
    fill();
    EXPECT_EQ(fill(), "") << "each flag is sent once";
    EXPECT_EQ(stored(), (Dictionary{{"20170315", row.today}})) << "and no second counted again";
  }
}

TEST_F(StatisticsTest, AddsUpTheDaysOfEachWindow) {
  const std::pair<const char*, const char*> rows[] = {{"20170316", ""},
                                                      {"20170313", "~a:u5mo3D ~a:u5mo5D ~a:u5mo7D"},
                                                      {"20170312", "~a:u5mo5D ~a:u5mo7D"},
                                                      {"20170311", "~a:u5mo5D ~a:u5mo7D"},
                                                      {"20170310", "~a:u5mo7D"},
                                                      {"20170309", "~a:u5mo7D"},
                                                      {"20170308", ""}};
  for (const auto& [day, flags] : rows) {
    forgetEverything();
    seed({{day, 300}});
    EXPECT_EQ(use(0.5), flags) << day;
  }
}

TEST_F(StatisticsTest, LeavesAWindowAloneOnceItsFlagsAreSent) {
  sendAll({"~a:u5mo3D", "~a:u10mo3D", "~a:u15mo3D", "~a:u30mo3D"});
  use(10.0);
  EXPECT_EQ(stored(), (Dictionary{{"20170315", 20}})) << "counted for two windows only";
  sendAll({"appExceeds3dayUsage", "appExceeds5dayUsage", "appExceeds7dayUsage"});
  EXPECT_EQ(use(890.0), "~a:u15m");
  EXPECT_EQ(stored(), (Dictionary{{"20170315", 20}}));
}

TEST_F(StatisticsTest, RaisesTheFlagsOfTheTotal) {
  sendAll({"appExceeds3dayUsage", "appExceeds5dayUsage", "appExceeds7dayUsage"});
  EXPECT_EQ(use(899.6), "");
  EXPECT_EQ(*platform.defaults.keptOnDisk().find("asst"), Value(899));
  EXPECT_EQ(use(0.9), "") << "the fraction was lost";
  EXPECT_EQ(use(1.0), "~a:u15m");
  EXPECT_EQ(use(899.0), "");
  EXPECT_EQ(use(1801.0), "~a:u30m ~a:u60m");
  EXPECT_EQ(use(5000.0), "");
  EXPECT_EQ(platform.defaults.integer("asst"), 3600) << "no longer counted";
}

TEST_F(StatisticsTest, LeavesPendingSecondsPendingOnceTheTotalIsSent) {
  sendAll({"~a:u15m", "~a:u30m", "~a:u60m"});
  use(10.0);
  EXPECT_EQ(stored(), (Dictionary{{"20170315", 30}}));
  fill();
  EXPECT_EQ(stored(), (Dictionary{{"20170315", 60}})) << "the same ten seconds, three times more";
  EXPECT_FALSE(platform.defaults.get("asst"));
}

TEST_F(StatisticsTest, ForgetsOldDaysWhenTheSixthBeforeTodayIsThere) {
  const Dictionary without = {{"20161231", 1}, {"20170308", 2}, {"20170310", 3}};
  seed(without);
  fill();
  Dictionary expected = without;
  expected.set("20170315", 0);
  EXPECT_EQ(stored(), expected) << "without that day nothing is forgotten";
  Dictionary with = without;
  with.set("20170309", 4);
  seed(with);
  fill();
  EXPECT_EQ(stored(), (Dictionary{{"20170310", 3}, {"20170309", 4}, {"20170315", 0}}));
}

TEST_F(StatisticsTest, SurvivesAClockThatRanBackwards) {
  EXPECT_EQ(use(-50.0), "");
  EXPECT_EQ(stored(), (Dictionary{{"20170315", -150}}));
  EXPECT_EQ(use(1e300),
            "~a:u5mo3D ~a:u10mo3D ~a:u15mo3D ~a:u30mo3D ~a:u5mo5D ~a:u10mo5D ~a:u15mo5D ~a:u30mo5D "
            "~a:u5mo7D ~a:u10mo7D ~a:u15mo7D ~a:u30mo7D ~a:u15m ~a:u30m ~a:u60m");
}

}  // namespace
}  // namespace kesu
