#include "foundation/Base64.h"

#include <array>

namespace kesu {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kForeign = 64;

constexpr std::array<std::uint8_t, 256> makeReverseAlphabet() {
  std::array<std::uint8_t, 256> reverse{};
  reverse.fill(kForeign);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    reverse[static_cast<std::uint8_t>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return reverse;
}

constexpr std::array<std::uint8_t, 256> kReverseAlphabet = makeReverseAlphabet();

bool isSpace(char character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

char letter(std::uint32_t bits, int shift) {
  return kAlphabet[(bits >> shift) & 63];
}

}  // namespace

std::string base64Encode(std::span<const std::uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (; bytes.size() >= 3; bytes = bytes.subspan(3)) {
    const std::uint32_t bits = std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8 | bytes[2];
    text.append({letter(bits, 18), letter(bits, 12), letter(bits, 6), letter(bits, 0)});
  }
  if (bytes.size() == 1) {
    const std::uint32_t bits = std::uint32_t{bytes[0]} << 16;
    text.append({letter(bits, 18), letter(bits, 12), '=', '='});
  } else if (bytes.size() == 2) {
    const std::uint32_t bits = std::uint32_t{bytes[0]} << 16 | std::uint32_t{bytes[1]} << 8;
    text.append({letter(bits, 18), letter(bits, 12), letter(bits, 6), '='});
  }
  return text;
}

std::optional<Data> base64Decode(std::string_view text) {
  Data bytes;
  bytes.reserve(text.size() / 4 * 3);
  std::uint32_t bits = 0;
  std::size_t letters = 0;
  std::size_t padding = 0;
  for (const char character : text) {
    const std::uint8_t value = kReverseAlphabet[static_cast<std::uint8_t>(character)];
    if (isSpace(character)) {
      continue;
    }
    if (character == '=') {
      ++padding;
      continue;
    }
    if (value == kForeign || padding > 0) {
      return std::nullopt;
    }
    bits = bits << 6 | value;
    if (++letters % 4 != 1) {
      bytes.push_back(static_cast<std::uint8_t>(bits >> (6 - 2 * ((letters - 1) % 4))));
    }
  }
  const bool complete = letters % 4 != 1 && (padding == 0 || (letters + padding) % 4 == 0) && padding <= 2;
  return complete ? std::optional<Data>(std::move(bytes)) : std::nullopt;
}

}  // namespace kesu
