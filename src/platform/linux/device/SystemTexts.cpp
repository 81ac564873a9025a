#include "platform/linux/device/SystemTexts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "foundation/Digest.h"
#include "foundation/Text.h"

namespace kesu {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kMachineIdDigits = 32;
constexpr int kLargestScreenSide = 32768;

// Never to be changed: all identifiers would change with it.
constexpr std::string_view kMachineSalt = "kesu vendor identifier 1:";

std::string_view trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

/// Cuts the first line off `text` and returns it.
std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(text.size(), line.size() + 1));
  return line;
}

std::string unquoted(std::string_view value) {
  const char quote = !value.empty() && (value.front() == '"' || value.front() == '\'') ? value.front() : '\0';
  std::string result;
  for (std::size_t i = quote == '\0' ? 0 : 1; i < value.size() && (quote == '\0' || value[i] != quote); ++i) {
    const bool escaped = value[i] == '\\' && quote != '\'' && i + 1 < value.size();
    result += value[escaped ? ++i : i];
  }
  return result;
}

bool isLowerHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

}  // namespace

std::optional<std::string_view> valueOfLine(std::string_view text, std::string_view name) {
  while (!text.empty()) {
    const std::string_view line = takeLine(text);
    const std::size_t colon = line.find(':');
    if (colon != std::string_view::npos && trimmed(line.substr(0, colon)) == name) {
      return trimmed(line.substr(colon + 1));
    }
  }
  return std::nullopt;
}

std::optional<std::uint64_t> bytesOfLine(std::string_view text, std::string_view name) {
  constexpr std::int64_t kBytesPerUnit = 1024;
  const auto value = valueOfLine(text, name);
  if (!value || !value->ends_with(" kB")) {
    return std::nullopt;
  }
  const auto number = wholeNumber(value->substr(0, value->size() - 3));
  if (!number || *number < 0 || *number > std::numeric_limits<std::int64_t>::max() / kBytesPerUnit) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(*number * kBytesPerUnit);
}

std::optional<std::string> assignedValue(std::string_view text, std::string_view name) {
  std::optional<std::string> result;
  while (!text.empty()) {
    const std::string_view line = trimmed(takeLine(text));
    if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == '=') {
      result = cleanText(unquoted(line.substr(name.size() + 1)));  // The last one counts, as for a shell.
    }
  }
  return result && !result->empty() ? result : std::nullopt;
}

std::optional<std::int64_t> wholeNumber(std::string_view text) {
  text = trimmed(text);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> scaledNumber(std::string_view text, double factor) {
  constexpr double kLargest = 9.0e18;
  text = trimmed(text);
  double number = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
  number *= factor;
  const bool usable = error == std::errc() && end == text.data() + text.size() && number >= 0.0 && number < kLargest;
  return usable ? std::optional(static_cast<std::int64_t>(number)) : std::nullopt;
}

std::optional<int> heightOfMode(std::string_view mode) {
  mode = trimmed(mode);
  mode.remove_suffix(mode.ends_with('i') ? 1 : 0);
  const std::size_t times = mode.find('x');
  if (times == std::string_view::npos) {
    return std::nullopt;
  }
  const auto width = wholeNumber(mode.substr(0, times));
  const auto height = wholeNumber(mode.substr(times + 1));
  const auto isSide = [](std::optional<std::int64_t> side) { return side && *side > 0 && *side <= kLargestScreenSide; };
  return isSide(width) && isSide(height) ? std::optional(static_cast<int>(*height)) : std::nullopt;
}

std::string cleanText(std::string_view text) {
  const bool isText = isValidUtf8(text);
  std::string result(text);
  std::ranges::replace_if(
      result,
      [isText](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7f || (byte >= 0x80 && !isText);
      },
      '?');
  return result;
}

std::optional<std::string> uuidOfMachine(std::string_view machineId) {
  const std::string_view id = trimmed(machineId);
  const bool isMade = id.find_first_not_of('0') != std::string_view::npos;  // A device may ship with zeros.
  if (id.size() != kMachineIdDigits || !std::ranges::all_of(id, isLowerHexDigit) || !isMade) {
    return std::nullopt;
  }
  Sha256Digest digest = sha256(std::string(kMachineSalt) + std::string(id));
  digest[6] =
      static_cast<std::uint8_t>((digest[6] & 0x0f) | 0x40);  // The form of a random UUID, which it is as good as.
  digest[8] = static_cast<std::uint8_t>((digest[8] & 0x3f) | 0x80);
  std::string uuid = hexLower(std::span(digest).first(16));
  std::ranges::transform(uuid, uuid.begin(), [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  for (const std::size_t at : {8U, 13U, 18U, 23U}) {
    uuid.insert(at, 1, '-');
  }
  return uuid;
}

}  // namespace kesu
