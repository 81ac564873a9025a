#include <gtest/gtest.h>
#include <kesu/events/KesuIdentity.h>

#include <limits>

#include "events/KesuVersionChangeEvent.h"
#include "support/KesuPriorityLogger.h"
#include "testing/RecordingPoster.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class IdentityTest : public ::testing::Test {
 protected:
  Dictionary onDisk() { return *platform.defaults.keptOnDisk().find("kesuIdentity")->dictionary(); }

  testing::ScopedPlatform platform;
  testing::RecordingPoster poster;
};

TEST_F(IdentityTest, KeepsAndReportsTheLatestIdentifier) {
  platform.defaults.set("kesuIdentity", Dictionary{{"older", "entry"}, {"appSpecificUserId", "ann"}});
  KesuIdentity::setUserIdentifer("bob");
  KesuIdentity::setUserIdentifer(7);
  EXPECT_EQ(onDisk(), (Dictionary{{"appSpecificUserId", 7}, {"kesuIdentityChanged", "1"}}));
  ASSERT_EQ(poster.posted.size(), 2U);
  EXPECT_EQ(poster.posted[0], (std::pair<char, Dictionary>{'u', {{"~uid", "bob"}}}));
  EXPECT_EQ(poster.posted[1].second, (Dictionary{{"~uid", 7}}));
  EXPECT_TRUE(poster.flow.empty());
}

TEST_F(IdentityTest, CannotReportAMissingIdentifier) {
  KesuPriorityLogger::sharedLogger().setLogLevel(2);
  KesuIdentity::setUserIdentifer(nil);
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  EXPECT_EQ(onDisk(), (Dictionary{{"appSpecificUserId", ""}, {"kesuIdentityChanged", "1"}}));
  EXPECT_TRUE(poster.posted.empty());
  const auto lines = platform.log.takeLines();
  EXPECT_TRUE(lines.size() == 1 && lines[0].level == 2);
}

TEST_F(IdentityTest, RefusesWhatNoRecordCanCarryAndForgetsTheUserBefore) {
  const Value kept[] = {"bob\x01", std::string("b\0b", 3), Array{"b", 1}, Date{1e12}, Data{1}};
  for (const Value& identifier : kept) {
    KesuIdentity::setUserIdentifer(identifier);
    EXPECT_EQ(onDisk(), (Dictionary{{"appSpecificUserId", identifier}, {"kesuIdentityChanged", "1"}}));
    EXPECT_EQ(poster.posted.back().second, (Dictionary{{"~uid", identifier}}));
  }
  EXPECT_TRUE(platform.log.takeLines().empty());
  const Value refused[] = {"bob\xff", Null{}, std::numeric_limits<double>::quiet_NaN(), Array{Null{}}, Array{Date{}}};
  for (const Value& identifier : refused) {
    KesuIdentity::setUserIdentifer("ann");
    poster.posted.clear();
    KesuIdentity::setUserIdentifer(identifier);
    EXPECT_EQ(onDisk(), (Dictionary{{"kesuIdentityChanged", "1"}}));
    EXPECT_TRUE(poster.posted.empty());
    const auto lines = platform.log.takeLines();
    EXPECT_TRUE(lines.size() == 1 && lines[0].level == 0);
  }
}

TEST_F(IdentityTest, RemovesTheIdentifierAndKeepsTheRest) {
  KesuIdentity::resetUserIdentifer();
  EXPECT_FALSE(platform.defaults.get("kesuIdentity")) << "there was none";
  platform.defaults.set("kesuIdentity", Dictionary{{"older", "entry"}});
  KesuIdentity::resetUserIdentifer();
  EXPECT_EQ(*platform.defaults.get("kesuIdentity"), Value(Dictionary{{"older", "entry"}}));
  platform.defaults.set("kesuIdentity", Dictionary{{"older", "entry"}, {"appSpecificUserId", "ann"}});
  KesuIdentity::resetUserIdentifer();
  EXPECT_EQ(onDisk(), (Dictionary{{"older", "entry"}, {"kesuIdentityChanged", "1"}}));
  ASSERT_EQ(poster.posted.size(), 3U);
  for (const auto& posted : poster.posted) {
    EXPECT_EQ(posted, (std::pair<char, Dictionary>{'u', {{"~uid", ""}}}));
  }
}

TEST_F(IdentityTest, PostsTraitsOfTheUserAlsoWhenThereAreNone) {
  KesuIdentity::postTraits({{"age", "42"}});
  KesuIdentity::postTraits({});
  ASSERT_EQ(poster.posted.size(), 2U);
  EXPECT_EQ(poster.posted[0], (std::pair<char, Dictionary>{'u', {{"age", "42"}}}));
  EXPECT_EQ(poster.posted[1], (std::pair<char, Dictionary>{'u', {}}));
}

class VersionTest : public IdentityTest {
 protected:
  /// One launch; returns the events, such as "Kesu.AppVersionChanged 1.0>1.1".
  std::string launch(const Dictionary& info) {
    platform.bundle.dictionary = info;
    versions.checkVersionChangeAndPost();
    EXPECT_TRUE(poster.posted.empty()) << "nothing is posted on the launching thread";
    platform.background.runAll();
    std::string events;
    for (const auto& [destination, record] : std::exchange(poster.posted, {})) {
      EXPECT_EQ(destination, 'e');
      EXPECT_EQ(record.size(), 3U);
      events += *record.findText("~e") + " " + *record.findText("oldver") + ">" + *record.findText("newver");
    }
    return events;
  }

  std::string remembered(const char* key) {
    const Dictionary kept = platform.defaults.keptOnDisk();
    const std::string* version = kept.findText(key);
    return version != nullptr ? *version : "<absent>";
  }

  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  KesuVersionChangeEvent versions{platform.defaults, platform.background, metrics, platform.bundle};
};

TEST_F(VersionTest, ForgetsAVersionThatIsGone) {
  launch({{"CFBundleShortVersionString", "1.0"}});
  EXPECT_EQ(launch({}), "Kesu.AppVersionChanged 1.0>");
  EXPECT_EQ(remembered("Kesu.AppVersionChanged"), "<absent>");
  EXPECT_EQ(launch({}), "");
  EXPECT_EQ(launch({{"CFBundleShortVersionString", "2.0"}}), "") << "counts as a first launch";
  EXPECT_EQ(remembered("Kesu.AppVersionChanged"), "2.0");
}

TEST_F(VersionTest, RemembersAfterTheReportOnly) {
  launch({{"CFBundleShortVersionString", "1.0"}});
  platform.bundle.dictionary = {{"CFBundleShortVersionString", "1.1"}};
  versions.checkVersionChangeAndPost();
  EXPECT_EQ(platform.defaults.text("Kesu.AppVersionChanged"), "1.0");
  platform.background.discardAll();
  poster.initialized = false;
  EXPECT_EQ(launch({{"CFBundleShortVersionString", "1.1"}}), "") << "there is no key";
  poster.initialized = true;
  EXPECT_EQ(launch({{"CFBundleShortVersionString", "1.1"}}), "Kesu.AppVersionChanged 1.0>1.1");
}

}  // namespace
}  // namespace kesu
