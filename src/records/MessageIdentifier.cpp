#include "records/MessageIdentifier.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "foundation/Base64.h"

namespace kesu {
namespace {

constexpr std::size_t kUuidBytes = 16;

std::string withoutPadding(std::string base64) {
  base64.erase(base64.find_last_not_of('=') + 1);
  return base64;
}

std::optional<std::uint8_t> hexDigit(char character) {
  if (character >= '0' && character <= '9') {
    return static_cast<std::uint8_t>(character - '0');
  }
  const char lower = static_cast<char>(character | 0x20);
  if (lower >= 'a' && lower <= 'f') {
    return static_cast<std::uint8_t>(lower - 'a' + 10);
  }
  return std::nullopt;
}

}  // namespace

std::string newBase64Uuid(Random& random) {
  return withoutPadding(base64Encode(random.uuid()));
}

std::string base64UUID(const std::string& uuidString) {
  std::array<std::uint8_t, kUuidBytes> bytes{};
  std::size_t digits = 0;
  for (const char character : uuidString) {
    if (character == '-') {
      continue;
    }
    const auto digit = hexDigit(character);
    if (!digit || digits == 2 * kUuidBytes) {
      return "";
    }
    bytes[digits / 2] = static_cast<std::uint8_t>((bytes[digits / 2] << 4) | *digit);
    ++digits;
  }
  return digits == 2 * kUuidBytes ? withoutPadding(base64Encode(bytes)) : "";
}

}  // namespace kesu
