#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace kesu {
namespace {

constexpr std::array<std::string_view, 20> kWideWhitespace = {
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83",
    "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A",
    "\xE2\x80\x8B", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};

std::uint8_t byteAt(std::string_view text, std::size_t position) {
  return static_cast<std::uint8_t>(text[position]);
}

// The length in bytes of the white-space character at the beginning of the text, 0 when something else stands there.
std::size_t whitespaceLength(std::string_view text) {
  const std::uint8_t first = byteAt(text, 0);
  if (first < 0x80) {
    return first == 0x20 || (first >= 0x09 && first <= 0x0D) ? 1 : 0;
  }
  if (first < 0xC2 || first > 0xE3) {
    return 0;
  }
  const auto* found = std::find_if(kWideWhitespace.begin(), kWideWhitespace.end(),
                                   [text](std::string_view space) { return text.starts_with(space); });
  return found == kWideWhitespace.end() ? 0 : found->size();
}

bool isContinuation(std::string_view text, std::size_t position) {
  return position < text.size() && (byteAt(text, position) & 0xC0) == 0x80;
}

// The length of the valid character that begins at `position` with a byte of 0x80 or more, or 0.
std::size_t wideCharacterLength(std::string_view text, std::size_t position) {
  const std::uint8_t first = byteAt(text, position);
  const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(text, position + i)) {
      return 0;
    }
  }
  if (length < 3) {
    return length;
  }
  // The second byte tells overlong forms, surrogates and numbers above U+10FFFF.
  const std::uint8_t second = byteAt(text, position + 1);
  const bool refused = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                       (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
  return refused ? 0 : length;
}

// Counts in UTF-16 units. An invalid byte is one character.
std::size_t utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t position = 0; position < text.size(); ++units) {
    const std::size_t wide = byteAt(text, position) < 0x80 ? 1 : wideCharacterLength(text, position);
    units += wide == 4 ? 1 : 0;
    position += std::max<std::size_t>(wide, 1);
  }
  return units;
}

bool areEightAscii(const char* bytes) {
  std::uint64_t eight = 0;
  std::memcpy(&eight, bytes, sizeof eight);
  return (eight & 0x8080808080808080u) == 0;
}

}  // namespace

bool isBlank(std::string_view text) {
  while (!text.empty()) {
    const std::size_t space = whitespaceLength(text);
    if (space == 0) {
      return false;
    }
    text.remove_prefix(space);
  }
  return true;
}

bool isValidUtf8(std::string_view text) {
  std::size_t position = 0;
  while (position < text.size()) {
    if (position + 8 <= text.size() && areEightAscii(text.data() + position)) {
      position += 8;
    } else if (byteAt(text, position) < 0x80) {
      ++position;
    } else {
      const std::size_t length = wideCharacterLength(text, position);
      if (length == 0) {
        return false;
      }
      position += length;
    }
  }
  return true;
}

std::string_view utf8PrefixOfUtf16Length(std::string_view text) {
  return text.substr(0, utf16Length(text));
}

std::string_view lastPathComponent(std::string_view path) {
  const std::size_t last = path.find_last_not_of('/');
  if (last == std::string_view::npos) {
    return path.substr(0, 1);
  }
  path = path.substr(0, last + 1);
  return path.substr(path.rfind('/') + 1);
}

std::string_view pathExtension(std::string_view path) {
  const std::string_view name = lastPathComponent(path);
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot + 1);
}

char asciiLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string asciiLowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), asciiLower);
  return lower;
}

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return asciiLower(a) == asciiLower(b); });
}

}  // namespace kesu
