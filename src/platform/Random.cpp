#include <kesu/platform/Random.h>

namespace kesu {

std::array<std::uint8_t, 16> Random::uuid() {
  std::array<std::uint8_t, 16> bytes{};
  fill(bytes);
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
  return bytes;
}

std::string Random::uuidString() {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  text.reserve(36);
  for (const std::uint8_t byte : uuid()) {
    if (text.size() == 8 || text.size() == 13 || text.size() == 18 || text.size() == 23) {
      text += '-';
    }
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0x0FU];
  }
  return text;
}

}  // namespace kesu
