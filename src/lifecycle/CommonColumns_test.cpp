#include "lifecycle/CommonColumns.h"

#include <gtest/gtest.h>

#include <string_view>

#include "testing/Keys.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class ColumnsTest : public ::testing::Test {
 protected:
  void initialize() {
    instance.setAppKey("key");
    instance.load();
  }

  Dictionary columnsFor(std::string_view destination, Dictionary record = {}) {
    PendingRecord pending;
    pending.destination = destination.front();
    pending.hasContext = instance.isLoaded();
    pending.moment = platform.clock.now();
    pending.identifier = platform.random.uuid();
    columns.addCommonColumnsToDictionary(record, pending, context);
    return record;
  }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  AppInstance instance{platform.defaults, platform.random};
  Location location{platform.mainLoop};
  const Dictionary* context = nullptr;
  CommonColumns columns{platform.platform, metrics, instance, location};
};

TEST_F(ColumnsTest, WritesTheColumnsInTheirOrder) {
  platform.clock.set(1489579320.1239);
  platform.bundle.dictionary = {{"CFBundleVersion", "42"}};
  platform.defaults.set("kesuIdentity", Dictionary{{"appSpecificUserId", "ann"}});
  initialize();
  location.didUpdateLocations({{1.0, 2.0, 3.0}, {-52.5, -13.25, -7.0}});
  const Dictionary record = columnsFor("t", {{"kak", "host"}, {"av", "host"}});
  EXPECT_EQ(testing::keysOf(record), "kak dest ~v kaid ace ase msg_id prd ~uid ldt rv ov long lat alt");
  const Dictionary fixed = {{"ldt", "2017-03-15 12:02:00 +0000"},
                            {"rv", "42"},
                            {"ov", "12"},
                            {"long", "13.25"},
                            {"lat", "52.5"},
                            {"alt", "7"}};
  for (const auto& [key, value] : fixed) {
    EXPECT_EQ(*record.find(key), value) << key;
  }
}

TEST_F(ColumnsTest, TakesIdentityAndVersionsFromTheProcessThatTookTheRecord) {
  platform.bundle.dictionary = {{"CFBundleVersion", "42"}, {"CFBundleShortVersionString", "1.0"}};
  initialize();
  const Dictionary former = {{"kak", "old key"}, {"kaid", "old"}, {"kaid2", "old2"}, {"rv", "41"}, {"ov", "11"}};
  context = &former;
  const Dictionary record = columnsFor("e");
  EXPECT_EQ(testing::keysOf(record), "dest kak ~v kaid ace ase msg_id ldt rv ov") << "it knew no short version";
  EXPECT_EQ(*record.findText("kak") + *record.findText("kaid") + *record.findText("rv") + *record.findText("ov"),
            "old keyold4111");
}

}  // namespace
}  // namespace kesu
