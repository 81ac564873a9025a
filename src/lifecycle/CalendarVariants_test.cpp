#include "lifecycle/CalendarVariants.h"

#include <gtest/gtest.h>

#include "testing/CalendarTest.h"

namespace kesu {
namespace {

using testing::at;
using testing::flagsOf;
using testing::kBerlin;
using testing::kKathmandu;
using testing::kUtc;
using testing::Zone;

class VariantsTest : public testing::CalendarTest {
 protected:
  /// What a new process reports that was last seen at `last`.
  Dictionary variants(double last, double now) {
    platform.defaults.set("lastSeen", last);
    platform.clock.set(now);
    CalendarVariants variants(platform.defaults, platform.clock, platform.locale, calendar);
    return calculate(variants);
  }

  Dictionary calculate(CalendarVariants& variants, const Dictionary& others = {}) {
    return reported(
        [&](Dictionary& flags, DefaultsChanges& changes) { variants.calculateVariantsForDMWQ(flags, changes); },
        others);
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
    EXPECT_EQ(found, row.variants) << flagsOf(found);
    EXPECT_EQ(platform.defaults.real("lastSeen"), row.variants.empty() ? row.last : row.now);
  }
}

TEST_F(VariantsTest, ReportsEveryPeriodAtFirst) {
  platform.locale.zoneName = "Europe/Berlin";
  moveTo(kBerlin);
  const Dictionary found = variants(0.0, at(2017, 12, 31, 23, 30));
  EXPECT_EQ(flagsOf(found), "~lh ~h ~d ltz ~m ~q ~w");
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
  calculate(variants);
  platform.clock.advance(60.0);
  EXPECT_TRUE(calculate(variants).empty());
  EXPECT_EQ(platform.defaults.real("lastSeen"), now);
  platform.defaults.remove("lastSeen");  // As a change of the key does; the time in memory stays.
  EXPECT_EQ(flagsOf(calculate(variants, {{"~a:LR3", "1"}})), "~a:LR3");
  EXPECT_EQ(platform.defaults.real("lastSeen"), now + 60.0);
}

}  // namespace
}  // namespace kesu
