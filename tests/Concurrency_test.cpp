// The life cycle on the main thread, hosts' threads that post, and the worker, all at once.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "foundation/PropertyList.h"
#include "testing/RealPlatform.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kSessions = 25;
constexpr int kScreensPerSession = 4;
constexpr int kPostsPerThread = 150;

std::size_t countOf(const std::string& entry, const std::string& flow) {
  std::size_t count = 0;
  for (std::size_t at = flow.find(entry); at != std::string::npos; at = flow.find(entry, at + 1)) {
    ++count;
  }
  return count;
}

/// The whole flow that all undelivered records carry under a key.
std::string flowOf(testing::RealPlatform& platform, const char* key) {
  std::string flow;
  for (const std::string& path : platform.storedFiles()) {
    const auto record = parsePropertyList(platform.files.read(path, 10'000'000).bytes);
    const std::string* part = record && record->dictionary() != nullptr ? record->dictionary()->findText(key) : nullptr;
    flow += part != nullptr ? *part : "";
  }
  return flow;
}

void postFromThread() {
  for (int post = 0; post < kPostsPerThread; ++post) {
    KesuCustomEvent::postWithEventName("Event", {{"k", "v"}});
    Kesu::updateScreenFlowForScenesWithName("Scene", 1.0);
    if (post % 10 == 0) {
      Kesu::setUserIdentifer("ann");
      Kesu::setRemoteNotificationDeviceToken({static_cast<std::uint8_t>(post)});
      Kesu::processReceivedRemoteNotification({{"mid", std::to_string(post)}});
    }
  }
}

TEST(Concurrency, LosesNoEntryOfAFlow) {
  testing::TemporaryDirectory home;
  testing::RealPlatform platform(home.path(), "http://127.0.0.1:1/");
  platform.launch();
  std::thread first(postFromThread);
  std::thread second(postFromThread);
  for (int session = 0; session < kSessions; ++session) {
    for (int screen = 0; screen < kScreensPerSession; ++screen) {
      const ScreenScope scope("Screen");
    }
    Application::shared().didEnterBackground();
    platform.mainLoop.pump();
    Application::shared().willEnterForeground();
  }
  first.join();
  second.join();
  Application::shared().didEnterBackground();
  ASSERT_TRUE(platform.settle());
  EXPECT_EQ(countOf("$$Screen~~0.", flowOf(platform, "~sf")), kSessions * kScreensPerSession);
  EXPECT_EQ(countOf("$$Event~~0", flowOf(platform, "~ef")), 2U * kPostsPerThread);
  EXPECT_EQ(countOf("$$Scene~~1.0", flowOf(platform, "~uf")), 2U * kPostsPerThread);
  EXPECT_EQ(platform.defaults.text("UnsentScreens") + platform.defaults.text("~ef"), "");
}

}  // namespace
}  // namespace kesu
