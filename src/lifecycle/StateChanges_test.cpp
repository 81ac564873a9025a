#include <gtest/gtest.h>
#include <kesu/platform/ApplicationNotifications.h>

#include "foundation/Json.h"
#include "lifecycle/DeveloperToken.h"
#include "lifecycle/KesuManager.h"
#include "records/DefaultsKeys.h"
#include "records/StateCodes.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

const ScreenKey kMain = {"Main", "0x1"};
const ScreenKey kMenu = {"Menu", "0x2"};

std::string keysOf(const Dictionary& record) {
  std::string keys;
  for (const auto& entry : record) {
    keys += (keys.empty() ? "" : " ") + entry.key;
  }
  return keys;
}

class FixedTopScreen : public TopScreen {
 public:
  std::optional<ScreenKey> topScreen() override { return top; }
  std::optional<ScreenKey> top = kMain;
};

/// One run of a process that has crashed and lost nothing but its memory, again and again.
class FlowTest : public ::testing::Test {
 protected:
  FlowTest() {
    platform.bundle.dictionary = {{"CFBundleVersion", "42"}, {"CFBundleShortVersionString", "1.0"}};
    restart();
  }

  void restart() {
    platform.defaults.loseUnsynchronized();
    usage = std::make_unique<UsageStatistics>(platform.defaults, platform.clock, calendar);
    flow = std::make_unique<ScreenFlow>(platform.defaults, platform.clock, platform.bundle, metrics, *usage);
  }

  Dictionary change(char state, const ScreenKey& screen = kMain) {
    Dictionary record;
    flow->screenFlowHandler(state, screen, record);
    return record;
  }

  /// Shows a screen for that long; returns the flow kept on disk.
  std::string visit(const ScreenKey& screen, double seconds) {
    change('a', screen);
    platform.clock.advance(seconds);
    change('d', screen);
    return onDisk("UnsentScreens");
  }

  std::string onDisk(const char* key) {
    const Dictionary kept = platform.defaults.keptOnDisk();
    const std::string* text = kept.findText(key);
    return text != nullptr ? *text : "<absent>";
  }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  WeekCalendar calendar{platform.locale};
  std::unique_ptr<UsageStatistics> usage;
  std::unique_ptr<ScreenFlow> flow;
};

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
  Dictionary traits;
  usage->fillInTraitsForAggregateAndActivations(traits);
  EXPECT_EQ(platform.defaults.integer("asst"), 18000);
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
  platform.defaults.appendString("~uf", "$$Ice~~2.0");
  platform.defaults.appendString("~ef", "$$Started~~0");
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
  platform.defaults.appendString("~ef", "$$Started~~0");
  platform.defaults.synchronize();
  restart();
  platform.clock.advance(3600.0);
  EXPECT_EQ(change('l', kMain), (Dictionary{{"~uf", "$$Main~~1.0"}, {"~cfqt", "1489579400999"}}));
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

TEST_F(FlowTest, KeepsMeasuringWhenTheClockIsSetBack) {
  change('a');
  platform.clock.jumpTo(platform.clock.now() - 5.0);
  change('d');
  EXPECT_EQ(onDisk("UnsentScreens"), "$$Main~~-5.0");
}

class ManagerTest : public FlowTest {
 protected:
  ~ManagerTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// Initialises the library; again, as the next process does.
  void initialize() {
    if (manager->isSDKInitialized()) {
      manager.reset();
      manager = newManager();
    }
    manager->initializeWithKey("key");
    platform.log.takeLines();
  }

  void notify(std::string_view name) { platform.notifications.post(name); }

  /// The records since the last call: the destination and the body.
  std::vector<std::pair<std::string, Dictionary>> takeRecords() {
    platform.settle();
    std::vector<std::pair<std::string, Dictionary>> records;
    const auto requests = platform.http.requests();
    for (; taken_ < requests.size(); ++taken_) {
      records.emplace_back(requests[taken_].headers.front().second, *parseJson(requests[taken_].body)->dictionary());
    }
    return records;
  }

  /// The last record of a table among them.
  Dictionary takeLast(const std::string& destination) {
    Dictionary last;
    for (auto& [found, body] : takeRecords()) {
      if (found == destination) {
        last = std::move(body);
      }
    }
    return last;
  }

  std::string takeDestinations() {
    std::string letters;
    for (const auto& record : takeRecords()) {
      letters += record.first;
    }
    return letters;
  }

  FixedTopScreen top;
  KesuStore store{platform.files, platform.defaults, platform.clock};
  KesuPost post{platform.http, platform.defaults, platform.clock, settings, store};
  ResendPass resendPass{store, post, platform.mainLoop, platform.clock};
  std::unique_ptr<KesuManager> manager = newManager();

 private:
  std::unique_ptr<KesuManager> newManager() {
    return std::make_unique<KesuManager>(platform.platform, settings, metrics, post, resendPass, top);
  }

  std::size_t taken_ = 0;
};

const std::string kColumns = "kak ~v kaid ace ase msg_id ldt rv av ov ";

TEST_F(ManagerTest, WritesTheKeysOfEachStateInTheirOrder) {
  initialize();
  const struct {
    std::function<void()> change;
    std::string keys;
    const char* state;
    const char* detail;
  } rows[] = {
      {[this] { notify(kApplicationDidFinishLaunchingNotification); }, "~ns ~ld bl bs ~o umem ~r ~u", "l",
       "Foreground Inactive"},
      {[this] { manager->stateChanges().screenChanged('a', kMain); }, "~ns ~sd bl bs ~o umem ~r", "a", "Main"},
      {[this] { manager->stateChanges().screenChanged('d', kMain); }, "~ns ~sd bl bs ~o umem ~r", "d", "Main"},
      {[this] { notify(kApplicationDidEnterBackgroundNotification); }, "~sf ~ns bl bs ~o umem ~r", "b", nullptr},
      {[this] { notify(kApplicationWillEnterForegroundNotification); }, "~ns bl bs ~o umem ~r", "r", nullptr},
      {[this] { notify(kApplicationWillTerminateNotification); }, "~ns ~tf bl bs ~o umem ~r", "t", "from foreground"}};
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

TEST_F(ManagerTest, NamesTheWirelessNetworkWhenKnown) {
  initialize();
  const std::tuple<std::optional<WifiFacts>, std::string> rows[] = {
      {std::nullopt, "~r"},
      {WifiFacts{"00:11:22:33:44:55", "home"}, "~r cssid cbssid"},
      {WifiFacts{"", "home"}, "~r cssid"},
      {WifiFacts{"00:11:22:33:44:55", ""}, "~r cbssid"}};
  for (const auto& [wifi, end] : rows) {
    platform.device.wifiNetwork = wifi;
    manager->stateChanges().screenChanged('a', kMain);
    const Dictionary record = takeLast("s");
    EXPECT_TRUE(keysOf(record).ends_with("umem " + end)) << keysOf(record);
    const Value* name = record.find("cssid");
    EXPECT_TRUE(name == nullptr || *name == Value("home"));
  }
}

TEST_F(ManagerTest, PostsWithoutContextBeforeInitialisation) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  notify(kApplicationDidEnterBackgroundNotification);
  const auto records = takeRecords();
  ASSERT_GE(records.size(), 1U);
  EXPECT_EQ(records[0].first, "UnknownDestination");
  EXPECT_EQ(keysOf(records[0].second), "~ns bl bs ~o umem ~r ase");
  EXPECT_TRUE(platform.log.contains("[KesuManager:1316]self.kesuAppInstanceId is nil Init"));
}

TEST_F(ManagerTest, LaunchesInOrder) {
  initialize();
  notify(kApplicationDidFinishLaunchingNotification);
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

TEST_F(ManagerTest, RefreshesTheTraitsOnceADay) {
  initialize();
  notify(kApplicationDidFinishLaunchingNotification);
  takeRecords();
  const double saved = platform.defaults.real("t-secondsSince1970");
  for (const auto& [later, traits] : {std::pair{86399.9, false}, std::pair{86400.0, true}}) {
    platform.defaults.set("t-secondsSince1970", saved);
    platform.clock.set(saved + later);
    initialize();
    notify(kApplicationDidFinishLaunchingNotification);
    bool refreshed = false;
    for (const auto& record : takeRecords()) {
      refreshed = refreshed || record.second.contains("~ft");
    }
    EXPECT_EQ(refreshed, traits) << later;
  }
}

TEST_F(ManagerTest, PostsTheActivationsThatAreDueAfterTheState) {
  initialize();
  notify(kApplicationDidFinishLaunchingNotification);
  takeRecords();
  notify(kApplicationWillEnterForegroundNotification);
  EXPECT_EQ(takeDestinations(), "s") << "nothing is due";
  platform.clock.advance(3600.0);
  manager->stateChanges().screenChanged('a', kMain);
  EXPECT_EQ(takeDestinations(), "s") << "screens do not look at activations";
  notify(kApplicationWillEnterForegroundNotification);
  const auto records = takeRecords();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[1].first, "t");
  EXPECT_EQ(keysOf(records[1].second), "~a:LR3 ~lh ~h kak ~v kaid ace ase msg_id prd ldt rv av ov");
  EXPECT_EQ(platform.defaults.real("t-secondsSince1970"), platform.clock.now());
  platform.clock.advance(400.0);
  notify(kApplicationDidEnterBackgroundNotification);
  EXPECT_TRUE(keysOf(takeLast("t")).starts_with("~a:u5mo3D ~a:u5mo5D ")) << "the usage of the session";
}

TEST_F(ManagerTest, TerminatesOnTheCallersThread) {
  initialize();
  notify(kApplicationWillTerminateNotification);
  EXPECT_EQ(platform.background.count(), 0U);
  EXPECT_EQ(platform.http.requestCount(), 2U) << "the state and the first variants";
}

TEST_F(ManagerTest, TracksAScreenThatAppearsBeforeTheWorkerGetsToTheLaunch) {
  visit(kMenu, 7.0);
  initialize();
  notify(kApplicationDidFinishLaunchingNotification);
  manager->stateChanges().screenChanged('a', kMain);
  platform.clock.advance(4.0);
  manager->stateChanges().screenChanged('d', kMain);
  notify(kApplicationDidEnterBackgroundNotification);
  manager->stateChanges().screenChanged('a', kMain);
  std::string flows;
  for (const auto& record : takeRecords()) {
    for (const char* key : {"~uf", "~cfqt", "~sf"}) {
      const std::string* text = record.second.findText(key);
      flows += text != nullptr ? *text + " " : "";
    }
  }
  EXPECT_EQ(flows, "$$Menu~~7.0 1489579320000 $$Main~~4.0 ");
}

TEST_F(ManagerTest, ReportsADeviceTokenOnce) {
  initialize();
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  manager->remoteNotifications().setRemoteNotificationDeviceToken({});
  const Data token = {0xDE, 0xAD, 0x00, 0x0F};
  manager->remoteNotifications().setRemoteNotificationDeviceToken(token);
  manager->remoteNotifications().setRemoteNotificationDeviceToken(token);  // Before the first was posted.
  const auto records = takeRecords();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(keysOf(records[0].second), "kak ~v kaid ace ase msg_id prd ldt rv av ov pn");
  EXPECT_EQ(*records[0].second.find("pn"), Value("dead000f"));
  EXPECT_TRUE(platform.log.contains("[KesuManager:1473]sendDeviceTokenTraits: and device token dead000f"));
  EXPECT_EQ(onDisk("deviceToken"), "dead000f");
  manager->remoteNotifications().setRemoteNotificationDeviceToken(token);
  EXPECT_EQ(takeDestinations(), "");
  manager->remoteNotifications().setRemoteNotificationDeviceToken({0x01});
  EXPECT_EQ(takeDestinations(), "t");
}

TEST_F(ManagerTest, KeepsTheIdentifiersOfANotification) {
  initialize();
  const struct {
    Object identifier;
    Dictionary userInfo;
    const char* kept;
  } rows[] = {{"n1", {{"mid", "m1"}, {"cid", "c1"}}, "m1 c1 n1"},
              {nil, {{"cid", "c2"}, {"aps", Dictionary{{"alert", "text only"}}}}, "m1 c2 n1"},
              {"", {}, "m1 c2 n1"}};
  for (const auto& row : rows) {
    manager->remoteNotifications().processReceivedRemoteNotification(row.identifier, row.userInfo);
    EXPECT_EQ(platform.background.count(), 0U) << "posted at once";
    const Dictionary record = takeLast("t");
    EXPECT_TRUE(record.contains("~ft"));
    EXPECT_EQ(*record.findText("mid") + " " + *record.findText("cid") + " " + *record.findText("kesupushIdentifier"),
              row.kept);
    EXPECT_EQ(onDisk("push_mid_key") + " " + onDisk("push_cid_key") + " " + onDisk("kesupushIdentifier"), row.kept);
  }
}

TEST_F(ManagerTest, ReportsTheLocaleThatChanged) {
  initialize();
  notify(kCurrentLocaleDidChangeNotification);
  EXPECT_EQ(keysOf(takeLast("t")), "kak ~v kaid ace ase msg_id prd ldt rv av ov kaid2 lrg lco lan al lpl lca");
}

TEST_F(ManagerTest, TellsDevelopersWhoThisInstallationIs) {
  EXPECT_EQ(developerToken("Man sure."), "<~9jqo^F*2M7/c~>");
  initialize();
  notify(kApplicationDidFinishLaunchingNotification);
  EXPECT_TRUE(platform.log.takeLines().empty()) << "not in production";
  platform.bundle.dictionary.set("devmode", "TRUE");
  notify(kApplicationDidFinishLaunchingNotification);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, 0);
  EXPECT_TRUE(lines[0].text.ends_with(developerToken(platform.defaults.text("localKaid"))));
}

}  // namespace
}  // namespace kesu
