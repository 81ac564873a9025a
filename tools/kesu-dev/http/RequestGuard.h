#pragma once

#include <string>
#include <string_view>

namespace kesu::dev {

/// The headers by which a request says where it means to go and who made it; empty when missing.
struct RequestOrigin {
  std::string_view host;       // "Host"
  std::string_view origin;     // "Origin"
  std::string_view fetchSite;  // "Sec-Fetch-Site"
};

/// Whether a request may be served by the server on loopback port `port`. Returns an empty text, or why not.
///
/// The server listens on loopback only, but every web page that the developer's browser shows can reach it there. A
/// page whose name was made to point at 127.0.0.1 shows in the Host header, a page that merely sends a request shows in
/// Origin or Sec-Fetch-Site. Programs send neither of those two.
std::string refusal(const RequestOrigin& request, int port);

}  // namespace kesu::dev
