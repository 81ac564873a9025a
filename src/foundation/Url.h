#pragma once

#include <optional>
#include <string_view>

namespace kesu {

// The one parser of URLs, for the library and its tools. Pure; any thread. It only splits: which schemes, hosts and
// ports are accepted is up to each caller. All views point into the text that was given.

/// The parts of scheme://[user@]host[:port][/path][?query][#fragment]. Each keeps its delimiters, so that all of them
/// in a row are the text again; a part that is missing is empty.
struct UrlParts {
  std::string_view scheme;  ///< "https://", in the letter case of the text.
  std::string_view user;    ///< "name:password@"
  std::string_view host;    ///< "host.example" or "[::1]".
  std::string_view port;    ///< ":8443". After "[...]" also any other text that stands before the path.
  std::string_view rest;    ///< "/path?query#fragment"

  bool operator==(const UrlParts&) const = default;
};

/// The scheme that a URL of any kind begins with, in the letter case of the text and without its colon; "" when it
/// begins with none.
std::string_view urlScheme(std::string_view url);

/// Splits an absolute URL with a host. Nothing when there is no scheme, when no slash follows it, or when a bracket is
/// not closed. Kept: one to three slashes are accepted behind the scheme, as libcurl and browsers do.
std::optional<UrlParts> splitUrl(std::string_view url);

/// Splits "host[:port]" or "[v6]:port": only these two parts are set. Nothing when a bracket is not closed.
std::optional<UrlParts> splitHostAndPort(std::string_view text);

/// A host without the brackets of an IPv6 address.
std::string_view withoutBrackets(std::string_view host);

/// The number of a `port` part, 0 to 65535. Nothing for any other text, such as "" or ":".
std::optional<int> portNumber(std::string_view port);

}  // namespace kesu
