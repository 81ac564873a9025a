#include "lifecycle/KesuManager.h"

#include <gtest/gtest.h>

#include "lifecycle/DeveloperToken.h"
#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using KesuManagerTest = testing::ManagerTest;

TEST_F(KesuManagerTest, TheInstallationRecordWaitsUntilTheDefaultsWereRead) {
  for (const char* late : {"it", ""}) {  // The second start is no first launch, and the traits are of today.
    platform.defaults.hideDisk();
    initialize();
    launch();
    EXPECT_EQ(takeDestinations(), "st") << "the state and its activations";
    platform.defaults.showDisk();
    EXPECT_EQ(takeDestinations(), late);
    platform.http.answerAll(200);
    platform.settle();
  }
}

TEST_F(KesuManagerTest, HandsEverythingToTheDiskInTheBackground) {
  initialize();
  launch();
  takeRecords();
  enterBackground();
  takeRecords();
  EXPECT_EQ(platform.defaults.checkpointCount(), 1);
}

TEST_F(KesuManagerTest, ShowsDevelopersTheTokenOfThisInstallation) {
  initialize();
  launch();
  EXPECT_TRUE(platform.log.takeLines().empty()) << "not in production";
  platform.bundle.dictionary.set("devmode", "TRUE");
  launch();
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, 0);
  EXPECT_TRUE(lines[0].text.ends_with(developerToken(platform.defaults.text("localKaid"))));
}

}  // namespace
}  // namespace kesu
