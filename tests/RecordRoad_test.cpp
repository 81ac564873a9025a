#include <gtest/gtest.h>

#include "testing/SdkFixture.h"

namespace kesu {
namespace {

class RecordRoadTest : public testing::SdkFixture {
 protected:
  RecordRoadTest() {
    launch();
    answerAll(200);
    forgetRequests();
  }

  void reachabilityChanges(std::uint32_t flags) {
    platform.reachability.setFlags(flags);
    platform.reachability.announceChange();
    platform.settle();
  }
};

TEST_F(RecordRoadTest, CarriesAnEventFromTheHostToTheCollector) {
  KesuCustomEvent::postWithEventName("Started", {{"level", "3"}, {"kak", "forged"}});
  EXPECT_EQ(destinations(), "") << "nothing is sent on the caller's thread";
  platform.settle();
  ASSERT_EQ(destinations(), "e");
  const Dictionary record = lastBody();
  const std::pair<const char*, const char*> wanted[] = {{"~e", "Started"}, {"level", "3"},       {"kak", "key"},
                                                        {"~r", "w"},       {"dest", "<absent>"}, {"prd", "<absent>"}};
  for (const auto& [key, value] : wanted) {
    EXPECT_EQ(text(record, key), value) << key;
  }
  EXPECT_EQ(platform.defaults.real("e-secondsSince1970"), 1489579320.0);
  EXPECT_EQ(platform.defaults.text("~ef"), "$$Started~~0");
}

TEST_F(RecordRoadTest, LosesNothingAtAnyMomentAndWritesOnceForABurst) {
  for (const char* name : {"a", "b", "c"}) {
    KesuCustomEvent::postWithEventName(name);
  }
  const int before = platform.defaults.synchronizeCount();
  platform.settle();
  EXPECT_EQ(platform.defaults.synchronizeCount(), before) << "the log has what is new";
  platform.background.runDelayed();
  EXPECT_EQ(platform.defaults.synchronizeCount() - before, 1);
  EXPECT_TRUE(platform.defaults.keptOnDisk().contains("e-secondsSince1970"));
  die();
  forgetRequests();
  launch();
  EXPECT_EQ(destinations(), "eees") << "not answered in the last process";
  EXPECT_EQ(text(body(0), "~e") + text(body(1), "~e") + text(body(2), "~e"), "abc");
  EXPECT_EQ(platform.defaults.text("~ef"), "$$a~~0$$b~~0$$c~~0") << "once";
}

TEST_F(RecordRoadTest, AppliesWhatTheLogHasAndTheUserDefaultsHaveNot) {
  const std::string identifier = platform.defaults.text("localKaid");
  platform.background.runDelayed();
  KesuCustomEvent::postWithEventName("a");
  Application::shared().didEnterBackground();
  KesuCustomEvent::postWithEventName("b");
  platform.bundle.dictionary.set("CFBundleShortVersionString", "2.0");
  platform.clock.advance(100.0);
  die();
  forgetRequests();
  launch();
  ASSERT_EQ(destinations().substr(0, 3), "ese");
  EXPECT_EQ(text(body(1), "~ns") + text(body(1), "~ef"), "b$$a~~0") << "the flow is in the record that ended it";
  EXPECT_EQ(text(body(2), "av") + " " + text(body(2), "ace"), "1.0 1489579320000") << "as it was taken";
  EXPECT_EQ(text(body(2), "kaid"), identifier);
  EXPECT_EQ(platform.defaults.text("~ef"), "$$b~~0$$Kesu.AppVersionChanged~~0");
}

class Player : public ViewController {};

TEST_F(RecordRoadTest, GivesEachScreenThatTheUserSeesItsTime) {
  const auto session = [this](double seconds) {
    platform.clock.advance(seconds);
    platform.settle();
    forgetRequests();
    Application::shared().didEnterBackground();
    platform.settle();
    const std::string flow = text(body(0), "~sf");
    platform.clock.advance(100.0);
    Application::shared().willEnterForeground();
    return flow;
  };
  Player byHand;
  byHand.appear();
  EXPECT_EQ(session(1.0), "$$kesu::(anonymous namespace)::Player~~1.0") << "without a window";
  EXPECT_EQ(session(2.0), "$$kesu::(anonymous namespace)::Player~~2.0") << "it begins again with the resume";
  byHand.disappear();
  const ScreenScope outer("Outer");
  platform.clock.advance(3.0);
  {
    const ScreenScope inner("Inner");
    EXPECT_EQ(session(4.0), "$$kesu::(anonymous namespace)::Player~~0.0$$Outer~~7.0$$Inner~~4.0");
    EXPECT_EQ(session(5.0), "$$Outer~~5.0$$Inner~~5.0");
  }
  Player below;
  Player presented;
  TabBarController tabs;
  tabs.setViewControllers({&below});
  Window window;
  window.setRootViewController(&tabs);
  window.makeKeyAndVisible();
  tabs.present(presented);
  EXPECT_EQ(session(6.0).substr(0, 12), "$$Inner~~0.0");
  EXPECT_EQ(session(7.0), "$$Outer~~7.0$$kesu::(anonymous namespace)::Player~~7.0") << "one controller, the top one";
}

TEST_F(RecordRoadTest, PostsExplicitActivationsAsTraits) {
  platform.defaults.set("push_mid_key", "m1");
  KesuExplicitActivation::post({{"how", "remote"}, {"~a:Activation", "0"}});
  platform.settle();
  ASSERT_EQ(destinations(), "t");
  const Dictionary record = lastBody();
  EXPECT_EQ(text(record, "~a:Activation") + text(record, "how"), "1remote");
  EXPECT_EQ(text(record, "mid"), "m1");
  EXPECT_EQ(text(record, "prd"), "x86_64");
  EXPECT_EQ(text(record, "lrg"), "<absent>");
  EXPECT_EQ(platform.defaults.real("t-secondsSince1970"), 1489579320.0);
}

TEST_F(RecordRoadTest, KeepsUndeliveredRecordsUntilTheCollectorIsBack) {
  for (const char* name : {"a", "b"}) {
    KesuCustomEvent::postWithEventName(name);
    platform.settle();
    platform.clock.advance(0.01);
    platform.http.failAll(HttpError::CannotConnect);
    platform.settle();
  }
  platform.reachability.setFlags(0);
  relaunch();  // The records live on disk.
  EXPECT_EQ(destinations(), "ees") << "nothing is sent again while the collector cannot be reached";
  answerAll(200);
  platform.clock.advance(5.0);
  reachabilityChanges(kFlagReachable);
  ASSERT_EQ(destinations(), "eesee");
  EXPECT_EQ(text(body(3), "~e") + text(body(4), "~e"), "ab");
  EXPECT_EQ(text(lastBody(), "fnk"), "<absent>");
  EXPECT_EQ(text(lastBody(), "ase"), "1489579325020");
  answerAll(200);
  EXPECT_TRUE(platform.files.paths().empty());
  reachabilityChanges(kFlagReachable);
  EXPECT_EQ(destinations(), "eesee");
}

TEST_F(RecordRoadTest, LeavesToTheLogWhatIsNotAnsweredAtTheEnd) {
  for (int i = 0; i < 1000; ++i) {
    KesuCustomEvent::postWithEventName("event " + std::to_string(i), {{"i", i}});
  }
  Application::shared().willTerminate();
  EXPECT_EQ(platform.outbox.openCount(), 1001U);
  KesuCustomEvent::postWithEventName("late");
  Application::shared().willTerminate();
  EXPECT_EQ(platform.outbox.openCount(), 1003U) << "records posted after the end are kept, too";
  EXPECT_TRUE(platform.files.paths().empty());
}

TEST_F(RecordRoadTest, StoresAtTheEndWhatTheLogDoesNotTake) {
  platform.outbox.refuse(true);
  for (int i = 0; i < 300; ++i) {
    platform.clock.advance(0.001);
    KesuCustomEvent::postWithEventName("event");
  }
  Application::shared().willTerminate();
  platform.settle();
  EXPECT_EQ(platform.defaults.integer("~numberOfFiles"), 301);
  EXPECT_EQ(platform.defaults.keptOnDisk().findText("~ef"), nullptr) << "the end took the flow along";
}

TEST_F(RecordRoadTest, SurvivesHostileAttributes) {
  Attributes many;
  for (int i = 0; i < 10'000; ++i) {
    many.set("key " + std::to_string(i), i);
  }
  KesuCustomEvent::postWithEventName("many", many);
  KesuCustomEvent::postWithEventName("large", {{"text", std::string(1'000'000, 'x')}});
  KesuCustomEvent::postWithEventName(std::string("nul\0name", 8), {{"nul\r\n", std::string("\0\r\n", 3)}});
  KesuCustomEvent::postWithEventName("\xff not text");
  KesuCustomEvent::postWithEventName("good");
  platform.settle();
  EXPECT_EQ(destinations(), "eeee");
  EXPECT_EQ(body(0).size(), 10'000U + 12U);
  EXPECT_EQ(text(body(2), "nul\r\n"), std::string("\0\r\n", 3));
  EXPECT_EQ(platform.defaults.text("~ef"), std::string("$$many~~0$$large~~0$$nul\0name~~0$$good~~0", 41));
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].text.starts_with("JSON serialization exception: NSInvalidArgumentException and the reason "));
}

}  // namespace
}  // namespace kesu
