#include <gtest/gtest.h>

#include "foundation/PropertyList.h"
#include "lifecycle/AppInstance.h"
#include "lifecycle/CommonColumns.h"
#include "lifecycle/Location.h"
#include "lifecycle/Provisioning.h"
#include "lifecycle/TraitData.h"
#include "records/DefaultsKeys.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

std::vector<std::string> keysOf(const Dictionary& record) {
  std::vector<std::string> keys;
  for (const auto& entry : record) {
    keys.push_back(entry.key);
  }
  return keys;
}

class InstanceTest : public ::testing::Test {
 protected:
  /// What the next process finds: a new object on the same user defaults.
  std::unique_ptr<AppInstance> launchedWith(const std::string& key) {
    auto instance = std::make_unique<AppInstance>(platform.defaults, platform.random);
    EXPECT_TRUE(instance->setAppKey(key));
    instance->load();
    return instance;
  }

  testing::ScopedPlatform platform;
};

TEST_F(InstanceTest, KeepsItsIdentityAndCountsLaunches) {
  const auto first = launchedWith(" my key ");
  EXPECT_TRUE(first->firstLaunch());
  EXPECT_EQ(first->identity().appKey, " my key ");
  EXPECT_EQ(first->identity().id.size(), 22U);
  EXPECT_NE(first->identity().id, first->identity().id2);
  EXPECT_FALSE(first->setAppKey("other"));
  const auto second = launchedWith(" my key ");
  EXPECT_FALSE(second->firstLaunch());
  EXPECT_EQ(second->identity().id, first->identity().id);
  EXPECT_EQ(second->identity().id2, first->identity().id2);
  EXPECT_EQ(second->appLaunchCount(), 2);
  EXPECT_EQ(platform.defaults.keptOnDisk().size(), 4U);
}

TEST_F(InstanceTest, StartsAnewWithAnotherKeyOrWithoutIdentifiers) {
  const auto first = launchedWith("one");
  for (const std::string_view key : kKeysClearedWithAppKey) {
    platform.defaults.set(key, "old");
  }
  platform.defaults.set("deviceToken", "abc");
  const auto second = launchedWith("two");
  EXPECT_TRUE(second->firstLaunch());
  EXPECT_NE(second->identity().id, first->identity().id);
  EXPECT_EQ(second->appLaunchCount(), 1);
  const Dictionary kept = platform.defaults.keptOnDisk();
  EXPECT_EQ(kept.size(), 5U) << "key, two identifiers, launch count, and the device token, which survives";
  platform.defaults.remove("localKaid2");
  EXPECT_TRUE(launchedWith("two")->firstLaunch());
}

class ColumnsTest : public InstanceTest {
 protected:
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  AppInstance instance{platform.defaults, platform.random};
  Location location;
  CommonColumns columns{platform.platform, metrics, instance, location};
};

TEST_F(ColumnsTest, LeavesRecordsAloneBeforeInitialisation) {
  Dictionary record = {{"k", "v"}};
  columns.addCommonColumnsToDictionary(record, "t");
  EXPECT_EQ(record, (Dictionary{{"k", "v"}}));
}

TEST_F(ColumnsTest, WritesTheColumnsInTheirOrder) {
  platform.clock.set(1489579320.1239);
  platform.bundle.dictionary = {{"CFBundleVersion", "42"}};
  platform.defaults.set("kesuIdentity", Dictionary{{"appSpecificUserId", "ann"}});
  instance.setAppKey("key");
  instance.load();
  location.didUpdateLocations({{1.0, 2.0, 3.0}, {-52.5, -13.25, -7.0}});
  Dictionary record = {{"kak", "host"}, {"av", "host"}};
  columns.addCommonColumnsToDictionary(record, "t");
  const std::vector<std::string> order = {"kak",  "dest", "~v", "kaid", "ace",  "ase", "msg_id", "prd",
                                          "~uid", "ldt",  "rv", "ov",   "long", "lat", "alt"};
  EXPECT_EQ(keysOf(record), order);
  const Dictionary fixed = {{"kak", "key"},
                            {"dest", "t"},
                            {"~v", "10-i-3.2.3"},
                            {"ase", ""},
                            {"ace", "1489579320123"},
                            {"prd", "x86_64"},
                            {"~uid", "ann"},
                            {"ldt", "2017-03-15 12:02:00 +0000"},
                            {"rv", "42"},
                            {"ov", "12"},
                            {"long", "13.25"},
                            {"lat", "52.5"},
                            {"alt", "7"}};
  for (const auto& [key, value] : fixed) {
    EXPECT_EQ(*record.find(key), value) << key;
  }
}

TEST_F(ColumnsTest, LeavesOutWhatDoesNotApply) {
  instance.setAppKey("key");
  instance.load();
  platform.defaults.set("kesuIdentity", Dictionary{{"kesuIdentityChanged", "1"}});
  Dictionary first;
  Dictionary second;
  columns.addCommonColumnsToDictionary(first, "e");
  columns.addCommonColumnsToDictionary(second, "e");
  EXPECT_EQ(keysOf(first),
            (std::vector<std::string>{"dest", "kak", "~v", "kaid", "ace", "ase", "msg_id", "ldt", "ov"}));
  EXPECT_EQ(*first.find("ace"), *second.find("ace"));
  EXPECT_NE(*first.find("msg_id"), *second.find("msg_id"));
}

TEST_F(ColumnsTest, AddsTheTraitBlocksOfEachType) {
  platform.defaults.set("push_mid_key", "m1");
  platform.defaults.set("deviceToken", "abcd");
  platform.locale.identifier = "de_DE@calendar=buddhist";
  platform.locale.languages = {"de-DE", "en"};
  platform.locale.country = "";
  const struct {
    TraitType type;
    std::vector<std::string> keys;
  } rows[] = {
      {TraitType::Full,
       {"mid", "kaid2", "~x", "pn", "cn", "ccc", "cmm", "lrg", "lco", "lan", "al", "lpl", "lca", "jb", "pm", "pas",
        "~ft"}},
      {TraitType::PushAndCarrier, {"mid", "kaid2", "pn", "cn", "ccc", "cmm"}},
      {TraitType::LocaleChanged, {"mid", "kaid2", "lrg", "lco", "lan", "al", "lpl", "lca"}},
      {TraitType::ExplicitActivation, {"mid", "kaid2"}},
      {TraitType::Identifiers, {"mid", "kaid2"}},
      {TraitType::FirstLaunch,
       {"mid", "kaid2", "~x", "pn", "cn", "ccc", "cmm", "lrg", "lco", "lan", "al", "lpl", "lca", "jb", "pm", "pas"}},
      {static_cast<TraitType>(6), {"mid", "kaid2"}}};
  for (const auto& row : rows) {
    Dictionary record;
    addTraitData(record, row.type, "id2", platform.platform, metrics);
    EXPECT_EQ(keysOf(record), row.keys) << static_cast<int>(row.type);
  }
  Dictionary full;
  addTraitData(full, TraitType::Full, "id2", platform.platform, metrics);
  EXPECT_EQ(*full.find("lrg"), Value("de_DE"));
  EXPECT_EQ(*full.find("lpl"), Value("de-DE en"));
  EXPECT_EQ(*full.find("lco"), Value(Null{}));
  EXPECT_EQ(*full.find("pm"), Value("Unknown"));
}

TEST(LocationTest, LetsItsManagerGoAfterAnUpdate) {
  struct CountingManager : LocationManager {
    explicit CountingManager(int& calls) : calls_(calls) {}
    void stopUpdatingLocation() override { ++calls_; }
    void clearDelegate() override { ++calls_; }
    int& calls_;
  };
  int calls = 0;
  Location location;
  location.setManager(std::make_unique<CountingManager>(calls));
  location.didUpdateLocations({});
  EXPECT_FALSE(location.fetched());
  EXPECT_EQ(calls, 0);
  location.didUpdateLocations({{-1.0, 2.0, 3.0}});
  location.stopUpdatingLocation();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(location.fetched()->latitude, 1.0);
  location.reset();
  EXPECT_FALSE(location.fetched());
}

/// A profile: binary garbage around a property list, as signed containers have it.
Data profile(const std::string& list) {
  const std::string text = "\x30\x82\x01" + list + std::string("\0\xff", 2);
  return Data(text.begin(), text.end());
}

Data profileOf(const Dictionary& entries) {
  const std::string list = *writePropertyList(entries);
  return profile(list.substr(list.find("<plist")));
}

TEST(Provisioning, TellsHowTheApplicationWasDistributed) {
  const Dictionary debuggable = {{"get-task-allow", true}};
  const std::pair<std::optional<Data>, const char*> rows[] = {
      {std::nullopt, "Unknown"},
      {Data{}, "Unknown"},
      {profile("no markers at all"), "Unknown"},
      {profile("</plist><plist"), "Unknown"},
      {profile("<plist><dict><key>a</key></plist>"), "Unknown"},
      {profileOf({}), "App Store"},
      {profileOf({{"ProvisionsAllDevices", false}}), "Enterprise"},
      {profileOf({{"ProvisionedDevices", Array{"a"}}, {"Entitlements", debuggable}}), "Developer"},
      {profileOf({{"ProvisionedDevices", Array{"a"}}, {"Entitlements", Dictionary{{"get-task-allow", false}}}}),
       "Ad hoc"},
      {profileOf({{"ProvisionedDevices", Array{"a"}}}), "Ad hoc"},
      {profileOf({{"ProvisionedDevices", Array{}}, {"Entitlements", debuggable}}), "App Store"}};
  testing::ScopedPlatform platform;
  for (const auto& [data, mode] : rows) {
    EXPECT_EQ(releaseModeFromData(data), mode);
  }
  testing::FakeBundle bundle;
  EXPECT_EQ(provisioningMode(bundle), "Unknown");
  const Data enterprise = profileOf({{"ProvisionsAllDevices", true}});
  bundle.resources["embedded.mobileprovision"] = std::string(enterprise.begin(), enterprise.end());
  EXPECT_EQ(provisioningMode(bundle), "Enterprise");
}

TEST(Provisioning, SurvivesHostileProfiles) {
  testing::ScopedPlatform platform;
  const auto named = [](const std::string& name) {
    return profile("<plist><dict><key>Name</key><string>" + name + "</string></dict></plist>");
  };
  EXPECT_EQ(releaseModeFromData(named("M\u00fcller")), "App Store") << "the bytes are UTF-8";
  EXPECT_EQ(releaseModeFromData(named("M\xfcller")), "Unknown");
  std::string deep = "<plist>";
  for (int level = 0; level < 100'000; ++level) {
    deep += "<array>";
  }
  EXPECT_EQ(releaseModeFromData(profile(deep + "</plist>")), "Unknown");
  EXPECT_EQ(releaseModeFromData(profile("<plist><array/></plist>")), "Unknown") << "no dictionary";
  testing::FakeBundle bundle;
  bundle.resources["embedded.mobileprovision"] = "x<plist><dict/></plist>" + std::string(100U << 20U, ' ');
  EXPECT_EQ(provisioningMode(bundle), "Unknown") << "too large to be one";
}

TEST(Provisioning, LogsWhichMarkerIsMissing) {
  testing::ScopedPlatform platform;
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  const std::string atOnce = "<plist></plist>";
  parseDataIntoDictionary(Data(atOnce.begin(), atOnce.end()));
  parseDataIntoDictionary(profile("<plist> without an end"));
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "[KesuManager:629]unable to find beginning of plist");
  EXPECT_EQ(lines[1].text, "[KesuManager:632]unable to find end of plist");
}

}  // namespace
}  // namespace kesu
