#include "delivery/ResendBackOff.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

TEST(ResendBackOff, DoublesThePauseAfterEachPassThatLeavesRecordsBehind) {
  ResendBackOff backOff;
  double now = 100.0;
  EXPECT_EQ(backOff.secondsUntilNext(now), 0.0);
  for (const double pause : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 60.0, 60.0}) {
    backOff.passEnded(false, now);
    EXPECT_EQ(backOff.secondsUntilNext(now), pause);
    EXPECT_EQ(backOff.secondsUntilNext(now + pause / 2), pause / 2);
    now += pause;
    EXPECT_EQ(backOff.secondsUntilNext(now), 0.0);
  }
  backOff.passEnded(true, now);
  EXPECT_EQ(backOff.secondsUntilNext(now), 0.0);
  backOff.passEnded(false, now);
  EXPECT_EQ(backOff.secondsUntilNext(now), 1.0) << "a whole pass starts anew";
  EXPECT_TRUE(backOff.recordDelivered()) << "what a pass left behind waits for a delivery as well";
}

}  // namespace
}  // namespace kesu
