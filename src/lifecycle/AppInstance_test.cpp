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
