#include "services/DeploymentSettings.h"

#include <charconv>

#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr int kHttpsPort = 443;
constexpr int kHttpPort = 80;

int portOr(std::string_view digits, int fallback) {
  int port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  const bool usable = error == std::errc() && end == digits.data() + digits.size() && port > 0 && port <= 65535;
  return usable ? port : fallback;
}

}  // namespace

HostAndPort hostAndPortOfAuthority(const std::string& authority, int defaultPort) {
  const std::string_view all = authority;
  if (all.starts_with('[')) {
    const std::size_t close = all.find(']');
    if (close == std::string_view::npos) {
      return {"", defaultPort};
    }
    const std::string_view rest = all.substr(close + 1);
    return {std::string(all.substr(1, close - 1)),
            rest.starts_with(':') ? portOr(rest.substr(1), defaultPort) : defaultPort};
  }
  const std::size_t colon = all.rfind(':');
  if (colon == std::string_view::npos) {
    return {authority, defaultPort};
  }
  return {std::string(all.substr(0, colon)), portOr(all.substr(colon + 1), defaultPort)};
}

HostAndPort hostAndPortOfUrl(const std::string& url) {
  const std::size_t schemeEnd = url.find("://");
  if (schemeEnd == std::string::npos) {
    return {};
  }
  const std::string_view scheme = std::string_view(url).substr(0, schemeEnd);
  const bool isPlain = equalsIgnoringCase(scheme, "http");
  if (!isPlain && !equalsIgnoringCase(scheme, "https")) {
    return {};
  }
  const std::size_t begin = schemeEnd + 3;
  std::string authority = url.substr(begin, url.find_first_of("/?#", begin) - begin);
  authority.erase(0, authority.rfind('@') + 1);
  return hostAndPortOfAuthority(authority, isPlain ? kHttpPort : kHttpsPort);
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
  return chosen.empty() ? hostAndPortOfUrl(collectorUrl()) : hostAndPortOfAuthority(chosen, kHttpsPort);
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
