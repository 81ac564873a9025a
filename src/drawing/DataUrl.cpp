#include "drawing/DataUrl.h"

#include "foundation/Base64.h"
#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr std::string_view kScheme = "data:";
constexpr std::string_view kBase64 = ";base64";

int hexDigit(char character) {
  if (character >= '0' && character <= '9') {
    return character - '0';
  }
  const char small = static_cast<char>(character | 0x20);
  return small >= 'a' && small <= 'f' ? small - 'a' + 10 : -1;
}

/// Percent signs without two hexadecimal digits stay as they are.
std::string percentDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const int high = text[at] == '%' && at + 2 < text.size() ? hexDigit(text[at + 1]) : -1;
    const int low = high >= 0 ? hexDigit(text[at + 2]) : -1;
    bytes.push_back(low >= 0 ? static_cast<char>(high * 16 + low) : text[at]);
    at += low >= 0 ? 2 : 0;
  }
  return bytes;
}

bool isBase64(std::string_view mediaType) {
  const std::size_t end = mediaType.find_last_not_of(' ') + 1;
  return end >= kBase64.size() && equalsIgnoringCase(mediaType.substr(end - kBase64.size(), kBase64.size()), kBase64);
}

}  // namespace

bool isDataUrl(std::string_view url) {
  return equalsIgnoringCase(url.substr(0, kScheme.size()), kScheme);
}

std::optional<std::string> dataOfUrl(std::string_view url) {
  const std::string_view address = url.substr(0, url.find('#'));
  const std::size_t comma = address.find(',');
  if (!isDataUrl(address) || comma == std::string_view::npos) {
    return std::nullopt;
  }
  std::string bytes = percentDecoded(address.substr(comma + 1));
  if (!isBase64(address.substr(kScheme.size(), comma - kScheme.size()))) {
    return bytes;
  }
  const auto decoded = base64Decode(bytes);
  return decoded ? std::optional<std::string>(std::in_place, decoded->begin(), decoded->end()) : std::nullopt;
}

}  // namespace kesu
