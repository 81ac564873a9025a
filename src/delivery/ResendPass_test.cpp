#include "delivery/ResendPass.h"

#include <gtest/gtest.h>

#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class ResendPassTest : public ::testing::Test {
 protected:
  ~ResendPassTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  KesuPost post{platform.http, platform.defaults, platform.clock, settings, store};
  ResendPass resendPass{store, post, platform.mainLoop, platform.clock};
};

TEST_F(ResendPassTest, SendsEveryStoredRecordAgainInOnePass) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  for (int i = 0; i < 20; ++i) {
    platform.clock.advance(0.001);
    store.add({{"dest", "e"}, {"n", i}});
  }
  const std::pair<NetworkStatus, const char*> rows[] = {
      {NetworkStatus::NotReachable, "[KesuManager:1951]**** Not Reachable ****"},
      {NetworkStatus::Reachable, "[KesuManager:1953]**** wifi ****"},
      {NetworkStatus::ReachableCell, "[KesuManager:1955]**** cell ****"}};
  for (const auto& [status, line] : rows) {
    resendPass.start(status);
    platform.settle();
    EXPECT_EQ(platform.log.takeLines().front().text, line);
  }
  ASSERT_EQ(platform.http.requestCount(), 40U) << "passes know nothing of each other";
  platform.http.answerAll(200);
  platform.settle();
  EXPECT_TRUE(store.storedFiles().empty());
  EXPECT_TRUE(platform.log.contains("[KesuStore:129]FAILED removing "));
}

}  // namespace
}  // namespace kesu
