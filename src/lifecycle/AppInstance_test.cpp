#include "lifecycle/AppInstance.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "records/DefaultsKeys.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

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

TEST_F(InstanceTest, AnIdentityThatIsReadLateReplacesTheProvisionalOne) {
  const auto first = launchedWith("key");
  platform.defaults.hideDisk();
  const auto late = launchedWith("key");
  int settled = 0;
  late->whenSettled([&] { ++settled; });
  EXPECT_EQ(late->identity().id.size(), 22U);
  EXPECT_NE(late->identity().id, first->identity().id);
  EXPECT_FALSE(late->firstLaunch());
  EXPECT_EQ(settled, 0);
  platform.defaults.showDisk();
  EXPECT_EQ(settled, 1);
  EXPECT_EQ(late->identity().id, first->identity().id);
  EXPECT_EQ(late->identity().id2, first->identity().id2);
  EXPECT_FALSE(late->firstLaunch());
  EXPECT_EQ(late->appLaunchCount(), 2);
  EXPECT_EQ(platform.defaults.keptOnDisk().size(), 4U);
}

TEST_F(InstanceTest, AProvisionalIdentityStaysWhereThereIsNoneOfThisKey) {
  struct Row {
    const char* name;
    Dictionary onDisk;
  };
  const std::string id(22, 'o');
  const Row rows[] = {
      {"nothing", {}},
      {"half", {{"kesuSDKAPIKey", "key"}, {"localKaid", id}, {"alc", 8}}},
      {"another key's", {{"kesuSDKAPIKey", "other"}, {"localKaid", id}, {"localKaid2", id}, {"alc", 8}}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    testing::FakeUserDefaults defaults(row.onDisk);
    defaults.hideDisk();
    AppInstance instance(defaults, platform.random);
    instance.setAppKey("key");
    instance.load();
    const AppInstance::Identity provisional = instance.identity();
    defaults.showDisk();
    EXPECT_TRUE(instance.firstLaunch());
    EXPECT_EQ(instance.identity().id, provisional.id);
    const Dictionary kept = defaults.keptOnDisk();
    EXPECT_EQ(*kept.findText("localKaid"), provisional.id);
    EXPECT_EQ(*kept.findText("localKaid2"), provisional.id2);
    EXPECT_EQ(*kept.findText("kesuSDKAPIKey"), "key");
  }
}

TEST_F(InstanceTest, MayBeDestroyedBeforeTheDefaultsAreRead) {
  platform.defaults.hideDisk();
  launchedWith("key")->whenSettled([] { ADD_FAILURE(); });
  platform.defaults.showDisk();
  EXPECT_TRUE(platform.defaults.keptOnDisk().empty());
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

}  // namespace
}  // namespace kesu
