#include "lifecycle/DeveloperToken.h"

#include <array>
#include <cstdint>

namespace kesu {
namespace {

constexpr std::size_t kBytesAGroup = 4;
constexpr std::size_t kDigitsAGroup = 5;
constexpr std::uint32_t kBase = 85;

std::array<char, kDigitsAGroup> digitsOf(std::string_view group) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < kBytesAGroup; ++i) {
    number = number << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
  }
  std::array<char, kDigitsAGroup> digits{};
  for (std::size_t i = kDigitsAGroup; i-- > 0; number /= kBase) {
    digits[i] = static_cast<char>('!' + number % kBase);
  }
  return digits;
}

}  // namespace

std::string developerToken(std::string_view identifier) {
  std::string token = "<~";
  for (std::size_t begin = 0; begin < identifier.size(); begin += kBytesAGroup) {
    const std::string_view group = identifier.substr(begin, kBytesAGroup);
    token.append(digitsOf(group).data(), group.size() + 1);
  }
  return token + "~>";
}

}  // namespace kesu
