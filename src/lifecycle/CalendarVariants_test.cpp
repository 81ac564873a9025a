#include "lifecycle/CalendarVariants.h"

#include <gtest/gtest.h>

#include "testing/CalendarTest.h"

namespace kesu {
namespace {

using testing::at;
using testing::flagsOf;

class VariantsTest : public testing::CalendarTest {
 protected:
  Dictionary calculate(CalendarVariants& variants, const Dictionary& others = {}) {
    return reported(
        [&](Dictionary& flags, DefaultsChanges& changes) { variants.calculateVariantsForDMWQ(flags, changes); },
        others);
  }
};

TEST_F(VariantsTest, ComparesYearsToo) {
  platform.defaults.set("lastSeen", at(2017, 3, 15, 12));
  platform.clock.set(at(2018, 3, 15, 12));
  CalendarVariants variants(platform.defaults, platform.clock, platform.locale, calendar);
  EXPECT_EQ(flagsOf(calculate(variants)), "~lh ~h ~d ltz ~m ~q ~w") << "all by the same numbers as a year ago";
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
