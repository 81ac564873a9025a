#include "lifecycle/TraitData.h"

#include <gtest/gtest.h>

#include <string>

#include "testing/Keys.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class TraitDataTest : public ::testing::Test {
 protected:
  TraitDataTest() {
    platform.defaults.set("push_mid_key", "m1");
    platform.defaults.set("deviceToken", "abcd");
  }

  Dictionary traits(TraitType type, const std::string& id2 = "id2") {
    Dictionary record;
    addTraitData(record, type, id2, platform.platform, metrics);
    return record;
  }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
};

TEST_F(TraitDataTest, HasTheBlocksOfEachType) {
  const std::pair<TraitType, const char*> rows[] = {
      {TraitType::Full, "mid kaid2 ~x pn cn ccc cmm lrg lco lan al lpl lca jb pm pas ~ft"},
      {TraitType::PushAndCarrier, "mid kaid2 pn cn ccc cmm"},
      {TraitType::LocaleChanged, "mid kaid2 lrg lco lan al lpl lca"},
      {TraitType::ExplicitActivation, "mid kaid2"},
      {TraitType::Identifiers, "mid kaid2"},
      {TraitType::FirstLaunch, "mid kaid2 ~x pn cn ccc cmm lrg lco lan al lpl lca jb pm pas"},
      {static_cast<TraitType>(6), "mid kaid2"}};
  for (const auto& [type, keys] : rows) {
    EXPECT_EQ(testing::keysOf(traits(type)), keys) << static_cast<int>(type);
  }
  EXPECT_EQ(testing::keysOf(traits(TraitType::ExplicitActivation, "")), "mid") << "before the initialisation";
}

TEST_F(TraitDataTest, DescribesTheLocale) {
  platform.locale.identifier = "de_DE@calendar=buddhist";
  platform.locale.languages = {"de-DE", "en"};
  platform.locale.country = "";
  const Dictionary full = traits(TraitType::Full);
  EXPECT_EQ(*full.find("lrg"), Value("de_DE"));
  EXPECT_EQ(*full.find("lpl"), Value("de-DE en"));
  EXPECT_EQ(*full.find("lco"), Value(Null{}));
  EXPECT_EQ(*full.find("pm"), Value("Unknown"));
}

}  // namespace
}  // namespace kesu
