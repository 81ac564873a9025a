#include "lifecycle/StateChanges.h"

#include <gtest/gtest.h>

#include "testing/LifecycleTest.h"

namespace kesu {
namespace {

using testing::kColumns;
using testing::keysOf;
using testing::kMain;
using testing::kMenu;
using StateChangesTest = testing::ManagerTest;

TEST_F(StateChangesTest, WritesTheKeysOfEachStateInTheirOrder) {
  initialize();
  const struct {
    std::function<void()> change;
    std::string keys;
    const char* state;
    const char* detail;
  } rows[] = {{[this] { launch(); }, "~ns ~ld bl bs ~o umem ~r ~u", "l", "Foreground Inactive"},
              {[this] { appear(kMain); }, "~ns ~sd bl bs ~o umem ~r", "a", "Main"},
              {[this] { disappear(kMain); }, "~ns ~sd bl bs ~o umem ~r", "d", "Main"},
              {[this] { enterBackground(); }, "~sf ~ns bl bs ~o umem ~r", "b", nullptr},
              {[this] { enterForeground(); }, "~ns bl bs ~o umem ~r", "r", nullptr},
              {[this] { terminate(); }, "~ns ~tf bl bs ~o umem ~r", "t", "from foreground"}};
  for (const auto& row : rows) {
    row.change();
    const Dictionary record = takeLast("s");
    EXPECT_EQ(keysOf(record), kColumns + row.keys);
    EXPECT_EQ(*record.find("~ns"), Value(row.state));
    const Value* detail = record.find(row.state == std::string("l")   ? "~ld"
                                      : row.state == std::string("t") ? "~tf"
                                                                      : "~sd");
    EXPECT_EQ(detail != nullptr ? *detail : Value(), Value(row.detail));
    EXPECT_EQ(*record.find("bl"), Value("unmonitored"));
    EXPECT_EQ(*record.find("umem"), Value("1073741824"));
  }
}

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

TEST_F(StateChangesTest, PostsTheActivationsThatAreDueAfterTheState) {
  initialize();
  launch();
  takeRecords();
  enterForeground();
  EXPECT_EQ(takeDestinations(), "s") << "nothing is due";
  platform.clock.advance(3600.0);
  enterForeground();
  const auto records = takeRecords();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[1].first, "t");
  EXPECT_EQ(keysOf(records[1].second), "~a:LR3 ~lh ~h kak ~v kaid ace ase msg_id prd ldt rv av ov");
  EXPECT_EQ(platform.defaults.real("t-secondsSince1970"), platform.clock.now());
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

TEST_F(StateChangesTest, PostsNoActivationsForScreens) {
  initialize();
  launch();
  takeRecords();
  platform.clock.advance(3600.0);
  appear(kMain);
  EXPECT_EQ(takeDestinations(), "s");
}

TEST_F(StateChangesTest, PostsTheUsageOfTheSessionAtItsEnd) {
  initialize();
  launch();
  appear(kMain);
  platform.clock.advance(400.0);
  takeRecords();
  enterBackground();
  EXPECT_TRUE(keysOf(takeLast("t")).starts_with("~a:u5mo3D ~a:u5mo5D "));
}

TEST_F(StateChangesTest, KeepsTheOrderOfTheCalls) {
  initialize();
  appear(kMain);
  enterBackground();
  terminate();
  std::string states;
  for (const auto& [table, body] : takeRecords()) {
    states += table == "s" ? *body.findText("~ns") : "";
  }
  EXPECT_EQ(states, "abt");
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
