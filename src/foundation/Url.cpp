#include "foundation/Url.h"

#include <algorithm>
#include <charconv>

#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr std::size_t kMaxSlashes = 3;  // As libcurl reads URLs: both must find the same host.
constexpr int kMaxPort = 65535;

bool isLetter(char character) {
  return asciiLower(character) >= 'a' && asciiLower(character) <= 'z';
}

bool isSchemeCharacter(char character) {
  return isLetter(character) || isDigit(character) || character == '+' || character == '-' || character == '.';
}

}  // namespace

std::string_view urlScheme(std::string_view url) {
  const std::string_view scheme = url.substr(0, url.find(':'));
  const bool isScheme = scheme.size() < url.size() && !scheme.empty() && isLetter(scheme.front()) &&
                        std::ranges::all_of(scheme, isSchemeCharacter);
  return isScheme ? scheme : std::string_view();
}

std::optional<UrlParts> splitUrl(std::string_view url) {
  const std::size_t colon = urlScheme(url).size();
  const std::size_t begin = std::min(url.find_first_not_of('/', colon + 1), url.size());
  if (colon == 0 || begin - colon < 2 || begin - colon > kMaxSlashes + 1) {
    return std::nullopt;
  }
  const std::size_t end = std::min(url.find_first_of("/?#", begin), url.size());
  const std::string_view authority = url.substr(begin, end - begin);
  const std::size_t userLength = authority.rfind('@') + 1;  // npos + 1 is 0.
  auto parts = splitHostAndPort(authority.substr(userLength));
  if (parts) {
    parts->scheme = url.substr(0, begin);
    parts->user = authority.substr(0, userLength);
    parts->rest = url.substr(end);
  }
  return parts;
}

std::optional<UrlParts> splitHostAndPort(std::string_view text) {
  std::size_t end = std::min(text.rfind(':'), text.size());
  if (text.starts_with('[')) {  // The colons of an IPv6 address are none of a port.
    const std::size_t close = text.find(']');
    if (close == std::string_view::npos) {
      return std::nullopt;
    }
    end = close + 1;
  }
  UrlParts parts;
  parts.host = text.substr(0, end);
  parts.port = text.substr(end);
  return parts;
}

std::string_view withoutBrackets(std::string_view host) {
  return host.starts_with('[') ? host.substr(1, host.size() - 2) : host;
}

std::optional<int> portNumber(std::string_view port) {
  const char* const end = port.data() + port.size();
  int number = 0;
  if (!port.starts_with(':') || !std::all_of(port.begin() + 1, port.end(), isDigit)) {
    return std::nullopt;
  }
  const auto [last, error] = std::from_chars(port.data() + 1, end, number);
  return error == std::errc() && number <= kMaxPort ? std::optional(number) : std::nullopt;
}

}  // namespace kesu
