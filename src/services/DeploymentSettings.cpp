#include "services/DeploymentSettings.h"

#include <optional>

#include "foundation/Text.h"
#include "foundation/Url.h"

namespace kesu {
namespace {

constexpr int kHttpsPort = 443;
constexpr int kHttpPort = 80;

// A port that cannot be connected to must not keep reachability from being watched at all.
HostAndPort hostAndPortOf(const std::optional<UrlParts>& parts, int defaultPort) {
  if (!parts) {
    return {"", defaultPort};
  }
  const int port = portNumber(parts->port).value_or(0);
  return {std::string(withoutBrackets(parts->host)), port != 0 ? port : defaultPort};
}

}  // namespace

HostAndPort hostAndPortOfUrl(const std::string& url) {
  const auto parts = splitUrl(url);
  if (parts && equalsIgnoringCase(parts->scheme, "http://")) {
    return hostAndPortOf(parts, kHttpPort);
  }
  return parts && equalsIgnoringCase(parts->scheme, "https://") ? hostAndPortOf(parts, kHttpsPort) : HostAndPort();
}

std::string DeploymentSettings::textOr(std::string_view key, const char* builtIn) {
  const std::string text = bundle_.infoText(key).value_or("");
  return text.empty() ? builtIn : text;
}

std::string DeploymentSettings::collectorOverride() {
  return bundle_.infoText("KesuOverrideServer").value_or("");
}

std::string DeploymentSettings::collectorUrl() {
  return textOr("KesuOverrideServer", KESU_BUILT_IN_COLLECTOR_URL);
}

HostAndPort DeploymentSettings::reachabilityHost() {
  const std::string chosen = textOr("KesuReachabilityHost", "");
  return chosen.empty() ? hostAndPortOfUrl(collectorUrl()) : hostAndPortOf(splitHostAndPort(chosen), kHttpsPort);
}

std::string DeploymentSettings::messagingHost() {
  return textOr("KesuMessagingHost", KESU_BUILT_IN_MESSAGING_HOST);
}

bool DeploymentSettings::isProductionMode() {
  return !equalsIgnoringCase(textOr("devmode", ""), "true");
}

std::int64_t DeploymentSettings::logLevel() {
  return Value(textOr("KesuLogLevel", "0")).integerValue();
}

}  // namespace kesu
