#include "tools/kesu-dev/base/Text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>

#include "foundation/CivilTime.h"
#include "foundation/Text.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Bytes of the valid character that a text begins with; 0 when it begins with something else.
std::size_t characterLength(std::string_view text) {
  constexpr std::size_t kLongest = 4;
  for (std::size_t length = 1; length <= std::min(kLongest, text.size()); ++length) {
    if (isValidUtf8(text.substr(0, length))) {
      return length;
    }
  }
  return 0;
}

char32_t codePointOf(std::string_view character) {
  constexpr unsigned kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t value = static_cast<unsigned char>(character.front()) & kLeadMask[character.size()];
  for (const char byte : character.substr(1)) {
    value = (value << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
  }
  return value;
}

// Replaces each valid character by what `write` returns, each other byte by U+FFFD.
std::string rewritten(std::string_view bytes, std::string (*write)(std::string_view character)) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t length = characterLength(bytes);
    result += length == 0 ? std::string(kReplacement) : write(bytes.substr(0, length));
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

bool isHarmless(char32_t value) {
  const bool control = value < 0x20 || (value >= 0x7F && value < 0xA0);
  const bool changesDirection = (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069);
  return !control && !changesDirection && value != 0x2028 && value != 0x2029;
}

std::string escaped(char32_t value) {
  if (value == '\n') {
    return "\\n";
  }
  if (value == '\t') {
    return "\\t";
  }
  char text[16];
  std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned>(value));
  return text;
}

std::string harmless(std::string_view character) {
  const char32_t value = codePointOf(character);
  return isHarmless(value) ? std::string(character) : escaped(value);
}

std::string fractionText(std::int64_t milliseconds) {
  char text[16];
  std::snprintf(text, sizeof text, ".%03d", static_cast<int>(milliseconds % 1000));
  return text;
}

}  // namespace

std::string validUtf8(std::string_view bytes) {
  // Nearly all texts are valid, and each record that arrives passes here.
  return isValidUtf8(bytes) ? std::string(bytes)
                            : rewritten(bytes, [](std::string_view character) { return std::string(character); });
}

std::string printable(std::string_view bytes) {
  return rewritten(bytes, harmless);
}

std::size_t displayWidth(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isContinuation));
}

std::size_t bytesOfColumns(std::string_view text, std::size_t columns) {
  std::size_t end = 0;
  for (; end < text.size() && columns > 0; --columns) {
    do {
      ++end;
    } while (end < text.size() && isContinuation(text[end]));
  }
  return end;
}

std::string shortened(std::string_view text, std::size_t columns) {
  if (displayWidth(text) <= columns || columns == 0) {
    return std::string(text);
  }
  return std::string(text.substr(0, bytesOfColumns(text, columns - 1))) + std::string(kEllipsis);
}

std::string padded(std::string_view text, std::size_t columns) {
  const std::size_t width = displayWidth(text);
  return std::string(text) + std::string(width < columns ? columns - width : 0, ' ');
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string result;
  for (const std::string& text : texts) {
    result += (&text == texts.data() ? "" : std::string(separator)) + text;
  }
  return result;
}

std::string trimmedRight(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::optional<std::int64_t> parseDecimal(std::string_view text) {
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::int64_t value = 0;
  if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit) ||
      std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) {
    return std::nullopt;
  }
  return value;
}

std::string clockText(std::int64_t millisecondsSince1970) {
  const std::time_t seconds = static_cast<std::time_t>(millisecondsSince1970 / 1000);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  char text[16];
  std::strftime(text, sizeof text, "%H:%M:%S", &parts);
  return text + fractionText(millisecondsSince1970);
}

std::string utcText(std::int64_t millisecondsSince1970) {
  const std::int64_t wholeSeconds = millisecondsSince1970 / 1000;
  const Date date{static_cast<double>(wholeSeconds)};
  const CivilTime time = civilTime(date).value_or(CivilTime());
  return civilText(time, 'T') + fractionText(millisecondsSince1970) + "Z";
}

std::int64_t nowMilliseconds() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace kesu::dev
