#include "lifecycle/KesuManager.h"

#include <gtest/gtest.h>

#include "lifecycle/DeveloperToken.h"
#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::keysOf;
using KesuManagerTest = testing::ManagerTest;

TEST_F(KesuManagerTest, LaunchesInOrder) {
  initialize();
  launch();
  const auto records = takeRecords();
  ASSERT_EQ(records.size(), 3U);
  EXPECT_EQ(records[0].first + records[1].first + records[2].first, "its");
  EXPECT_EQ(keysOf(records[1].second),
            "kak ~v kaid ace ase msg_id prd ldt rv av ov kaid2 ~x cn ccc cmm lrg lco lan al lpl lca jb pm pas "
            "~lh ~h ~d ltz ~m ~q ~w");
  EXPECT_EQ(platform.defaults.integer("lrc"), 1);
  EXPECT_EQ(*platform.defaults.get("sevenDays"), Value(Array{"20170315"}));
  EXPECT_EQ(platform.reachability.startedCount(), 1);
}

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

TEST_F(KesuManagerTest, RefreshesTheTraitsOnceADay) {
  initialize();
  launch();
  takeRecords();
  platform.http.answerAll(200);  // Else the next process sends them again.
  platform.settle();
  const double saved = platform.defaults.real("t-secondsSince1970");
  for (const auto& [later, traits] : {std::pair{86399.9, false}, std::pair{86400.0, true}}) {
    platform.defaults.set("t-secondsSince1970", saved);
    platform.clock.set(saved + later);
    initialize();
    launch();
    bool refreshed = false;
    for (const auto& record : takeRecords()) {
      refreshed = refreshed || record.second.contains("~ft");
    }
    EXPECT_EQ(refreshed, traits) << later;
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

TEST_F(KesuManagerTest, ReportsTheLocaleThatChanged) {
  initialize();
  notify(kCurrentLocaleDidChangeNotification);
  EXPECT_EQ(keysOf(takeLast("t")), "kak ~v kaid ace ase msg_id prd ldt rv av ov kaid2 lrg lco lan al lpl lca");
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
