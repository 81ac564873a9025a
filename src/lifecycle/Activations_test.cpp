#include "lifecycle/Activations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "testing/CalendarTest.h"

namespace kesu {
namespace {

using testing::at;
using testing::flagsOf;
using testing::kHonolulu;

class ActivationsTest : public testing::CalendarTest {
 protected:
  std::string launchOrResume(char state) {
    return flagsOf(reported([this, state](Dictionary& flags, DefaultsChanges& changes) {
      activations.activationForLR(flags, changes, state);
    }));
  }

  std::string useAt(double now) {
    platform.clock.set(now);
    std::string raised;
    for (const char state : {'b', 'l', 'r'}) {
      raised += flagsOf(reported([this, state](Dictionary& flags, DefaultsChanges& changes) {
        activations.activationsForUniqueDays(flags, changes, state);
      }));
    }
    return raised;
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

}  // namespace
}  // namespace kesu
