#include <kesu/platform/ApplicationNotifications.h>
#include <kesu/platform/Platform.h>
#include <kesu/ui/Application.h>

#include <string_view>

#include "platform/OrderlyEnd.h"
#include "uikit/KeyWindow.h"

namespace kesu {
namespace {

void post(std::string_view name) {
  Platform::current().notifications.post(name, &Application::shared());
}

}  // namespace

Application& Application::shared() {
  static Application application;
  return application;
}

void Application::didFinishLaunching() {
  post(kApplicationDidFinishLaunchingNotification);
}

void Application::didEnterBackground() {
  post(kApplicationDidEnterBackgroundNotification);
}

void Application::willEnterForeground() {
  post(kApplicationWillEnterForegroundNotification);
}

void Application::willTerminate() {
  post(kApplicationWillTerminateNotification);
  endOrderly(Platform::current());
}

void Application::localeDidChange() {
  Platform::current().locale.refresh();
  post(kCurrentLocaleDidChangeNotification);
}

void Application::didReceiveMemoryWarning() {
  post(kApplicationDidReceiveMemoryWarningNotification);
}

Window* Application::keyWindow() {
  return kesu::keyWindow();
}

}  // namespace kesu
