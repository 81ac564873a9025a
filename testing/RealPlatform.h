#pragma once

#include <kesu.h>
#include <poll.h>

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "facade/Wiring.h"
#include "foundation/SharedInstance.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxRandom.h"
#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "platform/linux/files/LinuxFiles.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "platform/linux/outbox/LinuxAppendLog.h"
#include "platform/linux/reachability/LinuxReachabilitySource.h"
#include "testing/FakeBundle.h"
#include "testing/FakeDeviceFacts.h"
#include "testing/FakeLocale.h"
#include "testing/RecordingLog.h"
#include "testing/RecordingUrlOpener.h"

namespace kesu::testing {

/// The library on the real Linux services, but for what a test has to know beforehand (bundle, locale, device). The
/// home directory is the test's. The destructor shuts the library down as the end of the process does.
class RealPlatform {
 public:
  RealPlatform(const std::string& home, const std::string& collectorUrl, LinuxHttpClientOptions options = {})
      : files(home),
        defaults(files.preferencesDirectory()),
        outbox(files.outboxDirectory()),
        http(mainLoop, std::move(options)) {
    bundle.dictionary = {{"KesuOverrideServer", collectorUrl}, {"CFBundleShortVersionString", "1.0"}};
    http.setConnectObserver([this](const std::string& host, int port, bool connected) {
      reachability.connectionObserved(host, port, connected);
    });
    Platform::install(&platform);
  }

  ~RealPlatform() {
    background.shutdown(10.0);
    http.shutdown(0.0);
    mainLoop.drain(10.0);
    resetSharedInstances();
    Platform::install(nullptr);
  }

  RealPlatform(const RealPlatform&) = delete;
  RealPlatform& operator=(const RealPlatform&) = delete;

  void launch() {
    Kesu::initialize("key");
    Application::shared().didFinishLaunching();
  }

  /// Pumps until `done()`, at most `seconds`. Returns whether it is.
  bool pumpUntil(const std::function<bool()>& done, double seconds = 20.0) {
    const double end = clock.monotonic() + seconds;
    while (!done()) {
      if (clock.monotonic() > end) {
        return false;
      }
      pollfd work{.fd = mainLoop.fd(), .events = POLLIN, .revents = 0};
      ::poll(&work, 1, 10);
      mainLoop.pump();
    }
    return true;
  }

  /// The paths of all store files.
  std::vector<std::string> storedFiles() {
    std::vector<std::string> paths;
    files.enumerate(files.documentsDirectory(), [&paths](const DirectoryEntry& entry) {
      paths.push_back(entry.path);
      return true;
    });
    return paths;
  }

  /// Pumps until everything that was posted so far has had its reply, and what follows from it is done.
  bool settle(double seconds = 20.0) {
    const auto isQuiet = [this] {
      Wiring* library = SharedInstance<Wiring>::existing();
      return background.drain(10.0) && http.pendingCount() == 0 && mainLoop.nextDue() != 0.0 &&
             (library == nullptr || library->outbox.pendingCount() == 0);
    };
    return pumpUntil(isQuiet, seconds);
  }

  LinuxClock clock;
  LinuxRandom random;
  LinuxFiles files;
  LinuxUserDefaults defaults;
  LinuxAppendLog outbox;
  LinuxMainLoop mainLoop;
  LinuxHttpClient http;
  LinuxBackgroundQueue background;
  LinuxBackgroundQueue imageWorker;
  FakeLocale locale;
  FakeBundle bundle;
  LinuxReachabilitySource reachability{mainLoop};
  FakeDeviceFacts device;
  RecordingLog log;
  RecordingUrlOpener urlOpener;
  NotificationCenter notifications;
  Platform platform{clock,       random, files,  defaults,     outbox, http, mainLoop,  background,
                    imageWorker, locale, bundle, reachability, device, log,  urlOpener, notifications};
};

}  // namespace kesu::testing
