#pragma once

#include <optional>
#include <string>
#include <tuple>

namespace kesu {

/// Where a URL's requests go. Two URLs with equal origins may share connections, and what may be sent to the one may be
/// sent to the other.
struct HttpOrigin {
  bool secure = false;
  std::string host;  ///< Lower case; an IPv6 address without its brackets.
  int port = 0;

  bool operator==(const HttpOrigin&) const = default;
  bool operator<(const HttpOrigin& other) const {
    return std::tie(host, port, secure) < std::tie(other.host, other.port, other.secure);
  }
};

/// A URL that the client can fetch.
struct HttpUrl {
  HttpOrigin origin;
  std::string text;  ///< As it is requested: absolute, without fragment, user name and password.
};

/// Takes apart an absolute http: or https: URL; empty for anything else. User name and password are dropped: they are
/// never sent anywhere.
std::optional<HttpUrl> parseHttpUrl(const std::string& text);

}  // namespace kesu
