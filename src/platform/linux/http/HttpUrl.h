#pragma once

#include <optional>
#include <string>
#include <tuple>

namespace kesu {

/// The server of a URL. URLs with equal origins may share connections, and what may be sent to one may be sent to the
/// other.
struct HttpOrigin {
  bool secure = false;
  std::string host;  ///< Lower case; an IPv6 address without its brackets.
  int port = 0;

  bool operator==(const HttpOrigin&) const = default;
  bool operator<(const HttpOrigin& other) const {
    return std::tie(host, port, secure) < std::tie(other.host, other.port, other.secure);
  }
};

/// A URL that the client can request.
struct HttpUrl {
  HttpOrigin origin;
  std::string text;  ///< As it is requested: absolute, without fragment, user name and password.
};

/// Parses an absolute http: or https: URL; nothing for any other text. User name and password are dropped: they are
/// never sent.
std::optional<HttpUrl> parseHttpUrl(const std::string& text);

}  // namespace kesu
