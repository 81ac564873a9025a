#include "platform/linux/http/HttpUrl.h"

#include <algorithm>

#include "foundation/Text.h"
#include "foundation/Url.h"

namespace kesu {
namespace {

constexpr int kHttpPort = 80;
constexpr int kHttpsPort = 443;

// libcurl's own lists. What it would refuse is refused here, so that both find the same host in every accepted URL:
// where the two differed, a redirect could lead past the rules about origins.
constexpr std::string_view kRefusedInNames = "@{}[]\\$'\"^`*<>=;,+&():!";
constexpr std::string_view kAllowedInAddresses = "0123456789abcdefABCDEF:.";

bool isBlankOrControl(char character) {
  return (character >= 0 && character <= ' ') || character == '\x7f';
}

bool isHost(std::string_view host) {
  if (!host.starts_with('[')) {
    return !host.empty() && host.find_first_of(kRefusedInNames) == std::string_view::npos;
  }
  const std::string_view address = withoutBrackets(host);
  return !address.empty() &&
         address.substr(0, address.find('%')).find_first_not_of(kAllowedInAddresses) == std::string_view::npos;
}

// "/path?query", which a URL may leave out and a request may not.
std::string requestTarget(std::string_view rest) {
  const std::string_view target = rest.substr(0, rest.find('#'));
  return (target.starts_with('/') ? "" : "/") + std::string(target);
}

}  // namespace

std::optional<HttpUrl> parseHttpUrl(const std::string& text) {
  const auto parts = splitUrl(text);
  const bool isSecure = equalsIgnoringCase(urlScheme(text), "https");
  if (!parts || (!isSecure && !equalsIgnoringCase(urlScheme(text), "http"))) {
    return std::nullopt;
  }
  const bool namesPort = !parts->port.empty() && parts->port != ":";
  const auto port = namesPort ? portNumber(parts->port) : isSecure ? kHttpsPort : kHttpPort;
  const bool isUserTwofold = parts->user.find('@') + 1 < parts->user.size();
  if (!port || isUserTwofold || !isHost(parts->host) || std::ranges::any_of(text, isBlankOrControl)) {
    return std::nullopt;
  }
  HttpUrl made;
  made.origin = {isSecure, asciiLowerCase(withoutBrackets(parts->host)), *port};
  made.text = std::string(isSecure ? "https://" : "http://").append(parts->host);
  made.text += (namesPort ? ":" + std::to_string(*port) : "") + requestTarget(parts->rest);
  return made;
}

}  // namespace kesu
