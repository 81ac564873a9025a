#include "tools/kesu-dev/base/Text.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace kesu::dev {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct CodePoint {
  char32_t value = kReplacement;
  std::size_t length = 1;  // Bytes consumed; 1 for a byte that fits nowhere.
  bool valid = false;
};

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

std::size_t sequenceLength(unsigned char lead) {
  if (lead < 0x80) {
    return 1;
  }
  if (lead >= 0xC2 && lead <= 0xDF) {
    return 2;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    return 3;
  }
  return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Overlong forms and surrogates have a lead byte that looks right: they show only in the assembled value.
bool isCanonical(char32_t value, std::size_t length) {
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  return value >= kSmallest[length] && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

CodePoint decode(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = sequenceLength(lead);
  if (length == 0 || length > text.size() ||
      !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), isContinuation)) {
    return {};
  }
  constexpr unsigned kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
  char32_t value = lead & kLeadMask[length];
  for (std::size_t i = 1; i < length; ++i) {
    value = (value << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
  }
  return isCanonical(value, length) ? CodePoint{value, length, true} : CodePoint{};
}

bool isHarmless(char32_t value) {
  const bool control = value < 0x20 || (value >= 0x7F && value < 0xA0);
  const bool turnsDirection = (value >= 0x202A && value <= 0x202E) || (value >= 0x2066 && value <= 0x2069);
  return !control && !turnsDirection && value != 0x2028 && value != 0x2029;
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

// std::strftime knows no milliseconds, and its pattern must be a literal.
std::string clockOf(const std::tm& parts, std::int64_t millisecondsSince1970) {
  char text[64];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", parts.tm_hour, parts.tm_min, parts.tm_sec,
                static_cast<int>(millisecondsSince1970 % 1000));
  return text;
}

}  // namespace

std::string validUtf8(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const CodePoint next = decode(bytes);
    result += next.valid ? bytes.substr(0, next.length) : std::string_view("\xEF\xBF\xBD");
    bytes.remove_prefix(next.length);
  }
  return result;
}

std::string printable(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const CodePoint next = decode(bytes);
    if (!next.valid) {
      result += "\xEF\xBF\xBD";
    } else if (isHarmless(next.value)) {
      result += bytes.substr(0, next.length);
    } else {
      result += escaped(next.value);
    }
    bytes.remove_prefix(next.length);
  }
  return result;
}

std::size_t displayWidth(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isContinuation));
}

std::string shortened(std::string_view text, std::size_t columns) {
  if (displayWidth(text) <= columns || columns == 0) {
    return std::string(text);
  }
  std::size_t end = 0;
  for (std::size_t taken = 0; taken + 1 < columns; ++taken) {
    do {
      ++end;
    } while (end < text.size() && isContinuation(text[end]));
  }
  return std::string(text.substr(0, end)) + "\xE2\x80\xA6";
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

std::string lowerAscii(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return result;
}

std::string clockText(std::int64_t millisecondsSince1970) {
  const std::time_t seconds = static_cast<std::time_t>(millisecondsSince1970 / 1000);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return clockOf(parts, millisecondsSince1970);
}

std::string utcText(std::int64_t millisecondsSince1970) {
  const std::time_t seconds = static_cast<std::time_t>(millisecondsSince1970 / 1000);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  char date[16];
  std::strftime(date, sizeof date, "%Y-%m-%d", &parts);
  return std::string(date) + "T" + clockOf(parts, millisecondsSince1970) + "Z";
}

std::int64_t nowMilliseconds() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

}  // namespace kesu::dev
