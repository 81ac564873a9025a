#include "lifecycle/ScreenFlow.h"

#include <gtest/gtest.h>

#include "testing/AppendText.h"
#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::FlowTest;
using testing::kMain;
using testing::kMenu;

TEST_F(FlowTest, ReportsTheFlowOfAnInterruptedRunOnce) {
  visit(kMain, 1.0);
  platform.clock.set(1489579400.9996);
  change('a', kMenu);
  testing::appendText(platform.defaults, "~ef", "$$Started~~0");
  platform.defaults.synchronize();
  restart();
  platform.clock.advance(3600.0);
  platform.defaults.set("~sfappbundleShortVersion", "");  // An empty version counts as one.
  platform.bundle.dictionary = {{"CFBundleVersion", "43"}};
  EXPECT_EQ(change('l', kMain),
            (Dictionary{{"~uf", "$$Main~~1.0"}, {"~cfqt", "1489579400999"}, {"ov", "12"}, {"av", ""}, {"rv", "42"}}))
      << "with the versions of that run";
  EXPECT_EQ(onDisk("~cfqt") + onDisk("~sfosVersion") + onDisk("~sfappbundleVersion"), "") << "they are reported once";
  restart();
  EXPECT_EQ(change('l', kMain), Dictionary());
  EXPECT_EQ(change('b', kMain), (Dictionary{{"~ef", "$$Started~~0"}}));
}

TEST_F(FlowTest, ForgetsWithAResumeWhichScreensWereVisible) {
  change('a', kMenu);
  change('r', {"Unknown", ""});
  platform.clock.advance(1.0);
  EXPECT_EQ(change('d', kMenu), Dictionary());
  EXPECT_EQ(change('b', {"Unknown", ""}), (Dictionary{{"~sf", "$$Unknown~~1.0"}}));
}

TEST_F(FlowTest, ReplacesTheFlowOfARunThatNeverLaunchedAgain) {
  visit(kMain, 1.0);
  restart();
  EXPECT_EQ(visit(kMenu, 2.0), "$$Menu~~2.0");
  EXPECT_EQ(visit(kMenu, 3.0), "$$Menu~~2.0$$Menu~~3.0");
}

TEST_F(FlowTest, RemembersTheVersionsOfTheFlow) {
  change('a');
  EXPECT_EQ(onDisk("~sfosVersion"), "<absent>") << "there is no flow yet";
  visit(kMain, 1.0);
  EXPECT_EQ(onDisk("~sfosVersion") + onDisk("~sfappbundleShortVersion") + onDisk("~sfappbundleVersion"), "121.042");
  platform.bundle.dictionary = {{"CFBundleVersion", "43"}};
  visit(kMain, 1.0);
  EXPECT_EQ(onDisk("~sfappbundleShortVersion") + onDisk("~sfappbundleVersion"), "1.043");
  platform.bundle.readable = false;
  platform.bundle.dictionary = {{"CFBundleVersion", "44"}};
  visit(kMain, 1.0);
  EXPECT_EQ(onDisk("~sfappbundleVersion"), "43");
}

TEST_F(FlowTest, LeavesOutTheNameThatNoTextCanHold) {
  visit({"\xff", "0x4"}, 1.0);
  EXPECT_EQ(visit(kMain, 2.0), "$$Main~~2.0");
  EXPECT_EQ(secondsOfUsage(), 3) << "its time counts";
}

TEST_F(FlowTest, KeepsMeasuringWhenTheClockIsSetBack) {
  change('a');
  platform.clock.jumpTo(platform.clock.now() - 5.0);
  change('d');
  EXPECT_EQ(onDisk("UnsentScreens"), "$$Main~~-5.0");
}

}  // namespace
}  // namespace kesu
