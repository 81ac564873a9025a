#include <kesu/platform/ApplicationNotifications.h>
#include <kesu/platform/Platform.h>
#include <openssl/crypto.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <utility>

#include "foundation/Mutex.h"
#include "platform/OrderlyEnd.h"
#include "platform/linux/HomeDirectory.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxLocale.h"
#include "platform/linux/LinuxLogSink.h"
#include "platform/linux/LinuxMemoryPressure.h"
#include "platform/linux/LinuxRandom.h"
#include "platform/linux/LinuxUrlOpener.h"
#include "platform/linux/base/Environment.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "platform/linux/device/LinuxDeviceFacts.h"
#include "platform/linux/files/LinuxFiles.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "platform/linux/outbox/LinuxAppendLog.h"
#include "platform/linux/reachability/LinuxReachabilitySource.h"

namespace kesu {
namespace {

Dictionary infoOverrides(const PlatformOptions& options) {
  return {{"KesuOverrideServer", options.collectorUrl},
          {"KesuMessagingHost", options.messagingHost},
          {"KesuReachabilityHost", options.reachabilityHost}};
}

LinuxHttpClientOptions httpOptions(const PlatformOptions& options) {
  LinuxHttpClientOptions http;
  http.caFile = options.caFile.empty() ? environmentText("KESU_CA_FILE") : options.caFile;
  return http;
}

template <typename Service>
Service& chosen(Service* ofHost, Service& ours) {
  return ofHost != nullptr ? *ofHost : ours;
}

/// All services of the process. Each is cheap to make: threads, sockets and the file of the user defaults are opened at
/// first use.
struct LinuxServices {
  explicit LinuxServices(const PlatformOptions& options)
      : bundle(locale, options.bundlePath, infoOverrides(options)),
        files(homeDirectory(options.homeDirectory, bundle)),
        defaults(files.preferencesDirectory()),
        outbox(files.outboxDirectory()),
        mainLoop(chosen<MainLoop>(options.mainLoop, ownMainLoop)),
        ownHttp(mainLoop, httpOptions(options)),
        reachability(mainLoop),
        log(options.logSink),
        urlOpener(options.urlOpener),
        pressure(
            ownMainLoop, [this] { return ownClock.monotonic(); }, [this] { warnOfMemory(); }),
        platform{chosen<Clock>(options.clock, ownClock),
                 random,
                 files,
                 defaults,
                 outbox,
                 chosen<HttpClient>(options.http, ownHttp),
                 mainLoop,
                 background,
                 imageWorker,
                 locale,
                 bundle,
                 reachability,
                 chosen<DeviceFacts>(options.device, ownDevice),
                 log,
                 urlOpener,
                 notifications} {
    connect();
  }

  void connect() {
    platform.http.setConnectObserver([this](const std::string& host, int port, bool connected) {
      reachability.connectionObserved(host, port, connected);
    });
    defaults.onCheckpointWanted([this] { background.post([this] { checkpointUnlessEnding(); }); });
    notifications.addObserver(kApplicationWillTerminateNotification, nullptr,
                              [this](const Notification&) { isEnding.store(true); });
    // In the first pump: a program that never pumps cannot be warned anyway. A host's own loop has no place for
    // triggers.
    ownMainLoop.post([this] { pressure.start(); });
  }

  void warnOfMemory() {
    if (!isEnding.load()) {
      notifications.post(kApplicationDidReceiveMemoryWarningNotification);
    }
  }

  // A checkpoint waits for the disk; at the end of a process it is left to the next start.
  void checkpointUnlessEnding() {
    if (!isEnding.load()) {
      defaults.checkpoint();
    }
  }

  ForkGuard forkGuard;
  std::atomic<bool> isEnding{false};
  LinuxClock ownClock;
  LinuxRandom random;
  LinuxLocale locale;
  LinuxBundle bundle;
  LinuxFiles files;
  LinuxUserDefaults defaults;
  LinuxAppendLog outbox;
  LinuxMainLoop ownMainLoop;
  MainLoop& mainLoop;
  LinuxHttpClient ownHttp;
  LinuxBackgroundQueue background;
  LinuxBackgroundQueue imageWorker;
  LinuxReachabilitySource reachability;
  LinuxDeviceFacts ownDevice;
  LinuxLogSink log;
  LinuxUrlOpener urlOpener;
  NotificationCenter notifications;
  LinuxMemoryPressure pressure;
  Platform platform;
};

// Never destroyed: exit handlers, and threads that still run while the process ends, use them.
std::atomic<LinuxServices*> services{nullptr};

void endProcess() {
  LinuxServices* all = services.load();
  if (all != nullptr && !all->forkGuard.isForkedChild()) {
    all->isEnding.store(true);
    all->log.stopForwarding();
    endAtExit(all->platform);
  }
}

// Exit handlers run in the reverse order of their registration, so the HTTP client's comes before ours. OpenSSL is told
// to register none: it would free what network threads still use, and wait for ever in a forked child of the host when
// such a thread of the parent had locked one of its mutexes. A host that uses OpenSSL before has its handler still.
bool registerExitHandlers() {
  OPENSSL_init_crypto(OPENSSL_INIT_NO_ATEXIT, nullptr);
  LinuxHttpClient::prepareExit();
  return std::atexit(endProcess) == 0;
}

}  // namespace

bool installLinuxPlatform(const PlatformOptions& options) {
  static Mutex mutex;
  const MutexLock lock(mutex);
  if (Platform::isInstalled() || services.load() != nullptr) {
    return false;
  }
  services.store(std::make_unique<LinuxServices>(options).release());
  [[maybe_unused]] static const bool isRegistered = registerExitHandlers();
  Platform::install(&services.load()->platform);
  return true;
}

}  // namespace kesu
