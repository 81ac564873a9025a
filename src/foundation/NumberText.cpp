#include "foundation/NumberText.h"

#include <kesu/foundation/Value.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace kesu {
namespace {

// Where shortestReal() changes to the exponent form.
constexpr int kSmallestPlainExponent = -4;
constexpr int kLargestPlainExponent = 15;

// A finite number in its shortest scientific form, "-d.ddde+dd", split.
struct Scientific {
  bool negative = false;
  std::string_view digits;  // Without the point.
  int exponent = 0;
};

// `text` is rewritten so that the digits lie side by side.
Scientific takenApart(char* text, const char* end) {
  Scientific parts;
  parts.negative = *text == '-';
  text += parts.negative ? 1 : 0;
  const char* mark = std::find<const char*>(text, end, 'e');
  const char* exponent = mark + (mark[1] == '+' ? 2 : 1);
  std::from_chars(exponent, end, parts.exponent);
  auto count = static_cast<std::size_t>(mark - text);
  if (count > 1) {
    text[1] = text[0];
    ++text;
    --count;
  }
  parts.digits = std::string_view(text, count);
  return parts;
}

void appendPlain(std::string& out, std::string_view digits, int exponent) {
  if (exponent < 0) {
    out.append("0.").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
    return;
  }
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) {
    out.append(digits).append(whole - digits.size(), '0');
  } else {
    out.append(digits.substr(0, whole)).append(1, '.').append(digits.substr(whole));
  }
}

}  // namespace

std::string decimal(std::int64_t number) {
  std::string text;
  appendDecimal(text, number);
  return text;
}

void appendDecimal(std::string& out, std::int64_t number) {
  char text[24];
  out.append(text, std::to_chars(text, text + sizeof text, number).ptr);
}

std::optional<std::string> decimalOrNothing(std::optional<std::int64_t> number) {
  return number ? std::optional(decimal(*number)) : std::nullopt;
}

void appendDigits(std::string& out, int number, std::size_t digits) {
  char text[12];
  const auto size = static_cast<std::size_t>(std::to_chars(text, text + sizeof text, number).ptr - text);
  out.append(digits - std::min(digits, size), '0').append(text, size);
}

std::string fixed(double number, int digits) {
  constexpr std::size_t kLongestWholePart = 312;  // The largest double has 309 digits; sign and point come on top.
  digits = std::max(digits, 0);
  std::string text(kLongestWholePart + static_cast<std::size_t>(digits), '\0');
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, digits);
  text.resize(static_cast<std::size_t>(end.ptr - text.data()));
  return text;
}

std::string generalReal(double number) {
  char text[32];
  return std::string(text, std::to_chars(text, text + sizeof text, number, std::chars_format::general, 6).ptr);
}

std::string shortestReal(double number) {
  std::string text;
  appendShortestReal(text, number);
  return text;
}

void appendShortestReal(std::string& out, double number) {
  if (!std::isfinite(number)) {
    out.append(std::isnan(number) ? "nan" : number < 0 ? "-inf" : "inf");
    return;
  }
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, number, std::chars_format::scientific);
  char apart[32];
  std::copy(text, end.ptr, apart);
  const Scientific parts = takenApart(apart, apart + (end.ptr - text));
  if (parts.exponent < kSmallestPlainExponent || parts.exponent > kLargestPlainExponent) {
    out.append(text, end.ptr);
    return;
  }
  if (parts.negative) {
    out.push_back('-');
  }
  appendPlain(out, parts.digits, parts.exponent);
}

std::string milliseconds(double secondsSince1970) {
  return decimal(Value(secondsSince1970 * 1000.0).integerValue());
}

}  // namespace kesu
