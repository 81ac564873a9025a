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
  /// Returns the application of this process, which is never destroyed before exit.
  static Application& shared();

  /// Reports that the application is ready; call once, after Kesu::initialize and before the first screen appears: the
  /// time of a screen that is visible already is not measured. Posts the installation record on the first launch, the
  /// traits that are due and the launch itself, and starts to watch the network.
  void didFinishLaunching();

  /// Reports that the application is no longer visible. Everything taken so far is handed to the disk, on the
  /// background queue: a set in standby may be switched off.
  void didEnterBackground();

  /// Reports that the application is about to be visible again.
  void willEnterForeground();

  /// Reports that the process is about to end. Returns within 50 ms whatever the network does and however many records
  /// wait: what is not answered by then is left on disk for the next start. It takes longer only while there are
  /// records that the disk has refused. An exit handler does the same for hosts that return from main() or call exit(),
  /// but calls no function of theirs. A process that ends otherwise (_exit, abort, a signal) loses no record; the next
  /// launch reports that it was interrupted.
  void willTerminate();

  /// Reports that locale, languages or time zone of the device have changed.
  void localeDidChange();

  /// Reports that the system is short of memory: cached pictures are dropped.
  void didReceiveMemoryWarning();

  /// Returns the window that the user sees (Window::makeKeyAndVisible), or null. Not owned.
  Window* keyWindow();
};

}  // namespace kesu
