#include <gtest/gtest.h>
#include <kesu/platform/ApplicationNotifications.h>
#include <kesu/ui/Application.h>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

TEST(ApplicationTest, PostsANotificationForEachReport) {
  testing::ScopedPlatform platform;
  std::string heard;
  int refreshed = 0;
  const auto observe = [&](std::string_view name, char letter) {
    platform.notifications.addObserver(name, &Application::shared(), [&, letter](const Notification&) {
      heard += letter;
      refreshed = platform.locale.refreshCount;
    });
  };
  observe(kApplicationDidFinishLaunchingNotification, 'l');
  observe(kApplicationDidEnterBackgroundNotification, 'b');
  observe(kApplicationWillEnterForegroundNotification, 'r');
  observe(kCurrentLocaleDidChangeNotification, 'c');
  observe(kApplicationDidReceiveMemoryWarningNotification, 'm');
  observe(kApplicationWillTerminateNotification, 't');
  Application& application = Application::shared();
  application.didFinishLaunching();
  application.didEnterBackground();
  platform.settle();
  application.willEnterForeground();
  EXPECT_EQ(refreshed, 0);
  application.localeDidChange();
  EXPECT_EQ(refreshed, 1) << "whoever hears of the change already reads the new locale";
  application.didReceiveMemoryWarning();
  application.willTerminate();
  EXPECT_EQ(heard, "lbrcmt");
}

}  // namespace
}  // namespace kesu
