#include "lifecycle/DeveloperToken.h"

#include <array>
#include <cstdint>

namespace kesu {
namespace {

constexpr std::size_t kBytesPerGroup = 4;
constexpr std::size_t kDigitsPerGroup = 5;
constexpr std::uint32_t kBase = 85;  // 85 to the power of 5 just exceeds 2 to the power of 32.

std::array<char, kDigitsPerGroup> digitsOf(std::string_view group) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < kBytesPerGroup; ++i) {
    number = number << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
  }
  std::array<char, kDigitsPerGroup> digits{};
  for (std::size_t i = kDigitsPerGroup; i-- > 0; number /= kBase) {
    digits[i] = static_cast<char>('!' + number % kBase);
  }
  return digits;
}

}  // namespace

std::string developerToken(std::string_view identifier) {
  std::string token = "<~";
  for (std::size_t begin = 0; begin < identifier.size(); begin += kBytesPerGroup) {
    const std::string_view group = identifier.substr(begin, kBytesPerGroup);
    token.append(digitsOf(group).data(), group.size() + 1);  // n bytes of a last group need n + 1 digits.
  }
  return token + "~>";
}

}  // namespace kesu
