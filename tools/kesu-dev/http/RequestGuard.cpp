#include "tools/kesu-dev/http/RequestGuard.h"

#include "foundation/Text.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kScheme = "http://";

bool isOurHost(std::string_view text, int port) {
  const std::string suffix = ":" + std::to_string(port);
  return equalsIgnoringCase(text, "127.0.0.1" + suffix) || equalsIgnoringCase(text, "localhost" + suffix) ||
         equalsIgnoringCase(text, "[::1]" + suffix);
}

}  // namespace

std::string refusal(const RequestOrigin& request, int port) {
  if (!isOurHost(request.host, port)) {
    return "this server answers to 127.0.0.1:" + std::to_string(port) + " only (see the Host header)";
  }
  const bool hasOrigin = !request.origin.empty();
  if (hasOrigin && !(request.origin.starts_with(kScheme) && isOurHost(request.origin.substr(kScheme.size()), port))) {
    return "web pages of other origins are not served";
  }
  if (request.fetchSite == "cross-site" || request.fetchSite == "same-site") {
    return "web pages of other sites are not served";
  }
  return {};
}

}  // namespace kesu::dev
