#pragma once

#include <kesu/platform/Bundle.h>

#include <cstdint>
#include <string>

namespace kesu {

/// A host and a port on it.
struct HostAndPort {
  std::string host;
  int port = 443;
};

/// Finds the host and port of an absolute http(s) URL; the host is empty for any other text. An IPv6 address comes
/// without its brackets. A port that is missing or unusable is replaced by the scheme's. Pure.
HostAndPort hostAndPortOfUrl(const std::string& url);

/// The addresses of the services: from the bundle's information dictionary, which the environment and the host's
/// options override, else built in. Any thread.
class DeploymentSettings {
 public:
  explicit DeploymentSettings(Bundle& bundle) : bundle_(bundle) {}

  /// "KesuOverrideServer" of the information dictionary, "" when there is none.
  std::string collectorOverride();

  /// The collector's whole URL: the override, else the built-in one.
  std::string collectorUrl();

  /// The host that reachability watches: "KesuReachabilityHost", else the host of the collector.
  HostAndPort reachabilityHost();

  /// host[:port] of the messaging service.
  std::string messagingHost();

  /// False exactly when "devmode" is "true" in any letter case: messages then come from the development paths.
  bool isProductionMode();

  /// The log threshold of an initialisation that names none: "KesuLogLevel", else 0.
  std::int64_t logLevel();

 private:
  std::string textOr(std::string_view key, const char* builtIn);

  Bundle& bundle_;
};

}  // namespace kesu
