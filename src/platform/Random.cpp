#include <kesu/platform/Random.h>

namespace kesu {

std::array<std::uint8_t, 16> Random::uuid() {
  std::array<std::uint8_t, 16> bytes{};
  fill(bytes);
  bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
  return bytes;
}

}  // namespace kesu
