#include "lifecycle/UsageStatistics.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "testing/CalendarTest.h"

namespace kesu {
namespace {

using testing::at;
using testing::flagsOf;

class StatisticsTest : public testing::CalendarTest {
 protected:
  StatisticsTest() { platform.clock.set(at(2017, 3, 15, 12)); }

  std::string fill() {
    return flagsOf(reported([this](Dictionary& traits, DefaultsChanges& changes) {
      usage.fillInTraitsForAggregateAndActivations(traits, changes);
    }));
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

  UsageStatistics usage{platform.defaults, platform.clock, calendar};
};

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
