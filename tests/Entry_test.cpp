#include <gtest/gtest.h>

#include "testing/SdkFixture.h"

namespace kesu {
namespace {

using EntryTest = testing::SdkFixture;

std::string reasonOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const InternalInconsistencyException& exception) {
    return exception.what();
  }
  return "no exception";
}

TEST_F(EntryTest, RefusesMisuseWithFixedReasons) {
  const std::string missing =
      "KesuAppKey needs to be set via initializeWithKey: method. Log on to console.kesu.example to get it.";
  for (const Object& key : {Object(nil), Object(""), Object(" \t\n"), Object(Value(Null{}))}) {
    EXPECT_EQ(reasonOf([&key] { Kesu::initialize(key); }), missing);
  }
  const auto view = std::make_shared<View>();
  const std::function<void()> calls[] = {
      [] { KesuCustomEvent::postWithEventName("early"); },
      [] { Kesu::countNewUnFetched({}); },
      [] { Kesu::getMessageHeadersForType(KesuInAppMessageType::Read, {}); },
      [] { Kesu::getMessageBodyWithCampaignID("c", "m", {}); },
      [] { Kesu::getMessagesForType(KesuInAppMessageType::Read, {}); },
      [] { Kesu::showInAppNotificationUI(nullptr, KesuInAppMessageType::All, {}, {}, {}, {}); },
      [] { Kesu::showUnreadInAppNotificationUI(nullptr); },
      [] { Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::All, {}, {}); },
      [] { Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::All, {}, {}, {}, {}, {}); },
      [] { Kesu::showUnreadInAppNotificationUIWithCompletionHandler({}); },
      [] { Kesu::dismissInAppNotificationUI(true); },
      [&] { Kesu::addBadge(view.get()); }};
  for (const auto& call : calls) {
    EXPECT_EQ(reasonOf(call), missing) << &call - calls;
  }
  Kesu::setInAppOptions({});
  EXPECT_FALSE(Kesu::previousReadMessages());
  EXPECT_NE(Kesu::registerForButtonClickOnInAppMessageWithSelector([](const KesuInAppStatus&) {}), 0U);
  EXPECT_EQ(Kesu::registerForButtonClickOnInAppMessageWithSelector({}), 0U);
  EXPECT_EQ(platform.http.requestCount(), 0U);
  EXPECT_FALSE(Kesu::isSDKInitialized());
  Kesu::initialize("a b");
  EXPECT_TRUE(Kesu::isSDKInitialized());
  EXPECT_EQ(reasonOf([] { Kesu::initialize("other"); }), "KesuAppKey is already set and Kesu is initialized!");
  EXPECT_EQ(
      reasonOf([] { Kesu(); }),
      "-init is not a valid initializer for Kesu. KesuAppKey needs to be set via initializeWithKey:  @\"<Your Kesu "
      "assigned App Key>\" ");
  EXPECT_EQ(missing, k_KesuAppKeyMissingException);
  EXPECT_EQ(platform.defaults.text("kesuSDKAPIKey"), "a b") << "the key as given, blanks and all";
  platform.log.takeLines();
}

TEST_F(EntryTest, TakesWhatIsReportedTooEarlyAsTheHeadersSay) {
  Kesu::setUserIdentifer("ann");
  Kesu::setRemoteNotificationDeviceToken({0x01});
  Kesu::processReceivedRemoteNotification({{"mid", "m1"}});
  KesuExplicitActivation::post();
  screenAppeared("Early");
  platform.settle();
  ASSERT_EQ(platform.http.requestCount(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(platform.http.request(i).headers.front().second, "UnknownDestination");
    EXPECT_EQ(text(body(i), "kak") + text(body(i), "kaid"), "<absent><absent>") << i;
  }
  launch();
  platform.clock.advance(5.0);
  forgetRequests();
  Kesu::setRemoteNotificationDeviceToken({0x01});
  screenDisappeared("Early");
  Application::shared().didEnterBackground();
  platform.settle();
  EXPECT_EQ(destinations(), "ss") << "the token counts as reported";
  EXPECT_EQ(text(lastBody(), "~uid") + text(lastBody(), "~sf"), "ann<absent>") << "the screen is not measured";
}

TEST_F(EntryTest, ShowsTheBanner) {
  platform.locale.zoneAbbreviation = "CET";
  Kesu::initialize("key", 3);
  std::vector<std::string> lines;
  for (const auto& line : platform.log.takeLines()) {
    lines.push_back(line.text);
  }
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_NE(lines[0].find("10-i-3.2.3"), std::string::npos);
  EXPECT_EQ(lines[1], "[KesuManager:150]App key:key Build:  Mar 15 2017 12:02:00 CET");
  EXPECT_TRUE(lines[2].ends_with(" 2017"));
  EXPECT_EQ(lines[3], " ");
}

TEST_F(EntryTest, PostsTheInstallationRecordOncePerKey) {
  launch();
  ASSERT_EQ(destinations(), "its");
  EXPECT_NE(text(body(0), "kaid"), text(body(0), "kaid2"));
  answerAll(200);
  relaunch();
  EXPECT_EQ(destinations(), "itss");
  answerAll(200);
  relaunch("another key");
  EXPECT_EQ(destinations(), "itssits");
}

TEST_F(EntryTest, LaunchesAtOnceInsideAnExtension) {
  platform.bundle.bundlePath = "/apps/Example.appex";
  Kesu::initialize("key");
  platform.settle();
  EXPECT_EQ(destinations(), "its");
  EXPECT_EQ(platform.reachability.startedCount(), 1);
  platform.log.takeLines();
}

TEST_F(EntryTest, WatchesTheCollectorsHost) {
  platform.bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:8470/collect");
  launch();
  ASSERT_EQ(platform.reachability.targets().size(), 1U);
  EXPECT_EQ(platform.reachability.targets()[0].hostName, "127.0.0.1");
  EXPECT_EQ(platform.reachability.targets()[0].port, 8470);
  EXPECT_DOUBLE_EQ(Kesu::timerReference(), 1489579320.0 - 1453881200.0);
  int changes = 0;
  NotificationCenter::defaultCenter().addObserver(kKesuReachabilityChangedNotification, nullptr,
                                                  [&changes](const Notification&) { ++changes; });
  platform.reachability.announceChange();
  platform.settle();
  EXPECT_EQ(changes, 1);
}

}  // namespace
}  // namespace kesu
