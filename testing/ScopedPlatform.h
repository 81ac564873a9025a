#pragma once

#include <kesu/platform/Platform.h>

#include "testing/FakeAppendLog.h"
#include "testing/FakeBundle.h"
#include "testing/FakeDeviceFacts.h"
#include "testing/FakeFiles.h"
#include "testing/FakeHttpClient.h"
#include "testing/FakeLocale.h"
#include "testing/FakeReachabilitySource.h"
#include "testing/FakeUserDefaults.h"
#include "testing/ManualBackgroundQueue.h"
#include "testing/ManualClock.h"
#include "testing/ManualMainLoop.h"
#include "testing/RecordingLog.h"
#include "testing/RecordingUrlOpener.h"
#include "testing/SequentialRandom.h"

namespace kesu::testing {

/// A whole platform of doubles, installed during the life of this object. One at a time, on the test's thread.
class ScopedPlatform {
 public:
  ScopedPlatform() { Platform::install(&platform); }
  ~ScopedPlatform() { Platform::install(nullptr); }

  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;

  /// Runs background tasks, then main-loop tasks and due timers, until both are empty; no time passes.
  void settle() {
    do {
      background.runAll();
      imageWorker.runAll();
      mainLoop.runAll();
    } while (background.count() + imageWorker.count() > 0);
  }

  ManualClock clock;
  SequentialRandom random;
  FakeFiles files;
  FakeUserDefaults defaults;
  FakeAppendLog outbox;
  ManualMainLoop mainLoop{clock};
  FakeHttpClient http{mainLoop};
  ManualBackgroundQueue background;
  ManualBackgroundQueue imageWorker;
  FakeLocale locale;
  FakeBundle bundle;
  FakeReachabilitySource reachability{mainLoop};
  FakeDeviceFacts device;
  RecordingLog log;
  RecordingUrlOpener urlOpener;
  NotificationCenter notifications;
  Platform platform{clock,       random, files,  defaults,     outbox, http, mainLoop,  background,
                    imageWorker, locale, bundle, reachability, device, log,  urlOpener, notifications};
};

}  // namespace kesu::testing
