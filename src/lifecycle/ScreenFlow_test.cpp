#include "lifecycle/ScreenFlow.h"

#include <gtest/gtest.h>

#include "testing/AppendText.h"
#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::FlowTest;
using testing::keysOf;
using testing::kMain;
using testing::kMenu;

TEST_F(FlowTest, MeasuresEachScreen) {
  EXPECT_EQ(visit(kMain, 12.34), "$$Main~~12.3");
  EXPECT_EQ(visit({"Main", "0x3"}, 0.0), "$$Main~~12.3$$Main~~0.0");
  change('a', kMain);
  platform.clock.advance(1.0);
  EXPECT_EQ(visit(kMenu, 2.0), "$$Main~~12.3$$Main~~0.0$$Menu~~2.0");
  change('d', {"Main", "0x3"});  // Another one of the class is visible, not this one.
  change('d', kMenu);
  EXPECT_EQ(change('b', kMain), (Dictionary{{"~sf", "$$Main~~12.3$$Main~~0.0$$Menu~~2.0$$Main~~3.0"}}));
  EXPECT_EQ(change('b', kMain), Dictionary()) << "all is sent";
}

TEST_F(FlowTest, CapsLongVisitsInTheFlowOnly) {
  EXPECT_EQ(visit(kMain, 7200.0), "$$Main~~7200.0");
  EXPECT_EQ(visit(kMain, 10800.0), "$$Main~~7200.0$$Main~~300.0");
  EXPECT_EQ(secondsOfUsage(), 18000);
}

TEST_F(FlowTest, FollowsTheApplicationIntoTheBackgroundAndBack) {
  change('r', kMain);
  platform.clock.advance(5.0);
  EXPECT_EQ(change('b', kMain), (Dictionary{{"~sf", "$$Main~~5.0"}}));
  EXPECT_EQ(onDisk("~cfqt"), "") << "a resume is no appearance";
  change('a', kMenu);
  change('r', {"Unknown", ""});
  platform.clock.advance(1.0);
  EXPECT_EQ(change('d', kMenu), Dictionary()) << "a resume forgets which screens were visible";
  EXPECT_EQ(change('b', {"Unknown", ""}), (Dictionary{{"~sf", "$$Unknown~~1.0"}}));
}

TEST_F(FlowTest, GivesTheVisibleScreenOfATerminationNoEntry) {
  change('a', kMain);
  platform.clock.advance(5.0);
  EXPECT_EQ(change('t', {"from foreground", ""}), Dictionary());
  EXPECT_EQ(onDisk("~cfqt"), "");
}

TEST_F(FlowTest, SendsTheThreeFlowsInTheirOrder) {
  visit(kMain, 1.0);
  testing::appendText(platform.defaults, "~uf", "$$Ice~~2.0");
  testing::appendText(platform.defaults, "~ef", "$$Started~~0");
  const Dictionary record = change('b', kMenu);
  EXPECT_EQ(keysOf(record), "~sf ~ef ~uf");
  EXPECT_EQ(record, (Dictionary{{"~sf", "$$Main~~1.0"}, {"~ef", "$$Started~~0"}, {"~uf", "$$Ice~~2.0"}}));
  platform.defaults.loseUnsynchronized();
  EXPECT_FALSE(platform.defaults.get("~ef") || platform.defaults.get("~uf"));
  EXPECT_EQ(onDisk("UnsentScreens"), "");
}

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

TEST_F(FlowTest, ReportsAnUnsentFlowWithResumeAndTerminationToo) {
  visit(kMain, 1.0);
  EXPECT_EQ(change('r', kMain), (Dictionary{{"~uf", "$$Main~~1.0"}})) << "no time: nothing was interrupted";
  EXPECT_EQ(onDisk("UnsentScreens"), "$$Main~~1.0") << "this session still has it";
  EXPECT_EQ(change('t', {"from foreground", ""}), (Dictionary{{"~uf", "$$Main~~1.0"}, {"~sf", "$$Main~~1.0"}}));
  visit(kMain, 2.0);
  platform.defaults.set("~uf", "$$Ice~~2.0");
  EXPECT_EQ(change('t', {"from foreground", ""}), (Dictionary{{"~uf", "$$Ice~~2.0"}, {"~sf", "$$Main~~2.0"}}))
      << "scenes take the place of the unsent flow";
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
