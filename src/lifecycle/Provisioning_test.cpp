#include "lifecycle/Provisioning.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "foundation/PropertyList.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

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
