#pragma once

#include <kesu/Export.h>
#include <kesu/platform/AppendLog.h>
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

/// The services through which the library touches the machine. They must outlive the installation: until another
/// platform is installed or the process ends.
struct Platform {
  Clock& clock;
  Random& random;
  Files& files;
  UserDefaults& defaults;
  AppendLog& outbox;  ///< Takes records before a call returns.
  HttpClient& http;
  MainLoop& mainLoop;
  BackgroundQueue& background;
  BackgroundQueue& imageWorker;  ///< Decodes, encodes and writes pictures, which would delay the records.
  LocaleService& locale;
  Bundle& bundle;
  ReachabilitySource& reachability;
  DeviceFacts& device;
  LogSink& log;
  UrlOpener& urlOpener;
  NotificationCenter& notifications;

  /// Returns the installed platform. When none is installed, it calls the default installer, which the library sets to
  /// installLinuxPlatform() with no options; without a default installer the process is ended by abort().
  KESU_API static Platform& current();

  /// Installs `platform`; null removes the current one. Main thread, before the first call into the library.
  KESU_API static void install(Platform* platform);

  /// Whether a platform is installed.
  KESU_API static bool isInstalled();

  /// Sets what current() calls when no platform is installed. Any thread.
  KESU_API static void setDefaultInstaller(void (*installer)());
};

/// What a host may change about the Linux platform. All of it is optional. An option overrides the environment, which
/// overrides the bundle's Info.plist, which overrides the built-in settings.
struct PlatformOptions {
  std::string bundlePath;        ///< Directory with Info.plist and resources. Else: the executable's directory.
  std::string homeDirectory;     ///< Else: $KESU_HOME, else `$XDG_DATA_HOME/<bundle identifier>`.
  std::string caFile;            ///< Extra CA bundle (PEM). Else: $KESU_CA_FILE.
  std::string collectorUrl;      ///< Whole collector URL. Else: "KesuOverrideServer".
  std::string messagingHost;     ///< host[:port]. Else: "KesuMessagingHost".
  std::string reachabilityHost;  ///< host[:port]. Else: "KesuReachabilityHost", else the collector's host.
  /// Any thread, also inside a call of the library: must not call the library nor exit(). Lines of the exit handler are
  /// written to standard error. Else: standard error.
  std::function<void(int level, std::string_view text)> logSink;
  std::function<bool(const std::string& url)> urlOpener;  ///< Main thread. Else: xdg-open.

  // Whole services, not owned. The library's exit handler is the last to use them: give them static lifetime and make
  // them before the platform is installed, or never destroy them.
  Clock* clock = nullptr;
  HttpClient* http = nullptr;
  MainLoop* mainLoop = nullptr;
  DeviceFacts* device = nullptr;
};

/// Installs the Linux platform. Main thread, before the first call into the library. Returns false, and does nothing,
/// when one is installed already. It is never destroyed: an exit handler ends its work in an orderly way.
KESU_API bool installLinuxPlatform(const PlatformOptions& options = {});

}  // namespace kesu
