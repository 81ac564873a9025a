#pragma once

#include <kesu/Export.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Bundle.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/DeviceFacts.h>
#include <kesu/platform/Files.h>
#include <kesu/platform/HttpClient.h>
#include <kesu/platform/LocaleService.h>
#include <kesu/platform/LogSink.h>
#include <kesu/platform/MainLoop.h>
#include <kesu/platform/NotificationCenter.h>
#include <kesu/platform/Random.h>
#include <kesu/platform/ReachabilitySource.h>
#include <kesu/platform/UrlOpener.h>
#include <kesu/platform/UserDefaults.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kesu {

/// Everything through which the library touches the machine. References; whoever installs a platform keeps the services
/// alive until another is installed or the process ends.
struct Platform {
  Clock& clock;
  Random& random;
  Files& files;
  UserDefaults& defaults;
  HttpClient& http;
  MainLoop& mainLoop;
  BackgroundQueue& background;
  BackgroundQueue& imageWorker;  ///< Decodes, encodes and writes pictures, which would hold up the records.
  LocaleService& locale;
  Bundle& bundle;
  ReachabilitySource& reachability;
  DeviceFacts& device;
  LogSink& log;
  UrlOpener& urlOpener;
  NotificationCenter& notifications;

  /// The installed platform. Before any was installed it installs the one named by setDefaultInstaller(), which the
  /// library sets to installLinuxPlatform() with no options; without that either, the process is ended by abort().
  KESU_API static Platform& current();

  /// Makes `platform` the current one, or none for null. Main thread, before the first call into the library.
  KESU_API static void install(Platform* platform);

  /// Whether a platform is installed.
  KESU_API static bool isInstalled();

  /// Names what current() calls when nothing is installed. Any thread.
  KESU_API static void setDefaultInstaller(void (*installer)());
};

/// What a host may change about the Linux platform. Everything is optional; what is given wins over the environment,
/// which wins over the bundle's Info.plist, which wins over what was built in.
struct PlatformOptions {
  std::string bundlePath;        ///< Directory with Info.plist and resources. Else: the executable's directory.
  std::string homeDirectory;     ///< Else: $KESU_HOME, else $XDG_DATA_HOME/<bundle identifier>.
  std::string caFile;            ///< Extra CA bundle (PEM). Else: $KESU_CA_FILE.
  std::string collectorUrl;      ///< Whole collector URL. Else: "KesuOverrideServer".
  std::string messagingHost;     ///< host[:port]. Else: "KesuMessagingHost".
  std::string reachabilityHost;  ///< host[:port]. Else: "KesuReachabilityHost", else the collector's host.
  std::function<void(int level, std::string_view text)> logSink;  ///< Any thread. Else: standard error.
  std::function<bool(const std::string& url)> urlOpener;          ///< Main thread. Else: xdg-open.

  // Whole services, not owned. The library's exit handler is the last to use them: give them static lifetime, made
  // before the platform is installed, or never destroy them.
  Clock* clock = nullptr;
  HttpClient* http = nullptr;
  MainLoop* mainLoop = nullptr;
  DeviceFacts* device = nullptr;
};

/// Installs the Linux platform. Main thread, before the first call into the library; a second call is ignored and
/// returns false. A platform that was installed is never taken down: an exit handler ends it in an orderly way.
KESU_API bool installLinuxPlatform(const PlatformOptions& options = {});

}  // namespace kesu
