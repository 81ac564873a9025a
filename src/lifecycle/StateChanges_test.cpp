#include "lifecycle/StateChanges.h"

#include <gtest/gtest.h>

#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::keysOf;
using testing::kMain;
using testing::kMenu;
using StateChangesTest = testing::ManagerTest;

TEST_F(StateChangesTest, NamesTheWirelessNetworkWhenKnown) {
  initialize();
  const std::tuple<std::optional<WifiFacts>, std::string> rows[] = {
      {std::nullopt, "~r"},
      {WifiFacts{"00:11:22:33:44:55", "home"}, "~r cssid cbssid"},
      {WifiFacts{"", "home"}, "~r cssid"},
      {WifiFacts{"00:11:22:33:44:55", ""}, "~r cbssid"}};
  for (const auto& [wifi, end] : rows) {
    platform.device.wifiNetwork = wifi;
    appear(kMain);
    const Dictionary record = takeLast("s");
    EXPECT_TRUE(keysOf(record).ends_with("umem " + end)) << keysOf(record);
    const Value* name = record.find("cssid");
    EXPECT_TRUE(name == nullptr || *name == Value("home"));
  }
}

TEST_F(StateChangesTest, PostsWithoutContextBeforeInitialisation) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  enterBackground();
  const auto records = takeRecords();
  ASSERT_GE(records.size(), 1U);
  EXPECT_EQ(records[0].first, "UnknownDestination");
  EXPECT_EQ(keysOf(records[0].second), "~ns bl bs ~o umem ~r ase");
  EXPECT_TRUE(platform.log.contains("[KesuManager:1316]self.kesuAppInstanceId is nil Init"));
  EXPECT_TRUE(platform.defaults.contains("UnknownDestination-secondsSince1970"));
  EXPECT_FALSE(platform.defaults.contains("t-secondsSince1970")) << "the first launch still owes its traits";
}

TEST_F(StateChangesTest, ReportsWhatIsDueOnceWhereverTheProcessDies) {
  initialize();
  launch();
  enterForeground();
  const auto dieAndBegin = [this] {
    platform.settle();
    platform.defaults.loseUnsynchronized();
    initialize();
    takeRecords();  // Once more what was not answered.
  };
  dieAndBegin();
  platform.outbox.tear();
  enterForeground();
  dieAndBegin();
  enterForeground();
  EXPECT_TRUE(keysOf(takeLast("t")).starts_with("~a:LR3 ")) << "the log did not have it";
  dieAndBegin();
  enterForeground();
  EXPECT_EQ(takeDestinations(), "s") << "the log had it";
}

TEST_F(StateChangesTest, TracksAScreenThatAppearsBeforeTheWorkerGetsToTheLaunch) {
  visit(kMenu, 7.0);
  initialize();
  launch();
  appear(kMain);
  platform.clock.advance(4.0);
  disappear(kMain);
  enterBackground();
  appear(kMain);
  std::string flows;
  for (const auto& record : takeRecords()) {
    for (const char* key : {"~uf", "~cfqt", "~sf"}) {
      const std::string* text = record.second.findText(key);
      flows += text != nullptr ? *text + " " : "";
    }
  }
  EXPECT_EQ(flows, "$$Menu~~7.0 1489579320000 $$Main~~4.0 ");
}

}  // namespace
}  // namespace kesu
