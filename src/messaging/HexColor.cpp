#include "messaging/HexColor.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>

namespace kesu {
namespace {

constexpr std::string_view kAsciiSymbols = "$+<=>^`|~";
// Second bytes, in UTF-8, of the symbols between U+00A2 and U+00B8; all begin with C2.
constexpr std::string_view kLatinSymbols = "\xA2\xA3\xA4\xA5\xA6\xA8\xA9\xAC\xAE\xAF\xB0\xB1\xB4\xB8";

// Length in bytes of the symbol that the text begins with, or 0.
std::size_t symbolLength(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  if (kAsciiSymbols.find(text.front()) != std::string_view::npos) {
    return 1;
  }
  const bool isLatin = text.size() > 1 && text[0] == '\xC2' && kLatinSymbols.find(text[1]) != std::string_view::npos;
  return isLatin || text.starts_with("\xC3\x97") || text.starts_with("\xC3\xB7") ? 2 : 0;
}

std::optional<std::uint32_t> scanHexadecimal(std::string_view text) {
  for (std::size_t length = symbolLength(text); length > 0; length = symbolLength(text)) {
    text.remove_prefix(length);
  }
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
  }
  std::uint32_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  if (result.ec == std::errc::result_out_of_range) {
    return std::numeric_limits<std::uint32_t>::max();
  }
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

double channel(std::uint32_t number, int shift) {
  return static_cast<double>((number >> shift) & 0xFF) / 255.0;
}

}  // namespace

std::optional<Color> colorFromHexadecimalString(std::string_view text) {
  std::string digits(text);
  std::erase(digits, '#');
  const std::optional<std::uint32_t> number = scanHexadecimal(digits);
  if (!number) {
    return std::nullopt;
  }
  return Color{channel(*number, 16), channel(*number, 8), channel(*number, 0), 1.0};
}

bool isValidHexadecimalString(std::string_view text) {
  return text.find_first_not_of("0123456789ABCDEF") != std::string_view::npos;
}

}  // namespace kesu
