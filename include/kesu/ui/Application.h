#pragma once

#include <kesu/Export.h>

namespace kesu {

class Window;

/// The host's life cycle, as the host reports it. Main thread; nothing here waits for the network.
///
/// Each operation posts its notification (kesu/platform/ApplicationNotifications.h), which the library turns into
/// records.
class KESU_API Application {
 public:
  /// The application of this process; always there.
  static Application& shared();

  /// Once, after Kesu::initialize, when the application is ready: posts the installation record on the first launch,
  /// the traits that are due and the launch itself, and starts to watch the network.
  void didFinishLaunching();

  /// The application is no longer visible. What is stored so far is also moved into its final place on disk.
  void didEnterBackground();

  /// The application is about to be visible again.
  void willEnterForeground();

  /// The process is about to end. Returns within 50 ms whatever the network does; every record is then delivered or on
  /// disk (where thousands are pending, writing them down takes what it takes). An exit handler does the same for hosts
  /// that just return from main().
  void willTerminate();

  /// Locale, languages or time zone of the device have changed.
  void localeDidChange();

  /// The system is short of memory: pictures that are kept for later are dropped.
  void didReceiveMemoryWarning();

  /// The window that the user sees (Window::makeKeyAndVisible), or null: before there is one, and when it has gone. Not
  /// owned.
  Window* keyWindow();
};

}  // namespace kesu
