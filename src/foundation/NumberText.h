#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace kesu {

// Numbers as text by the rules of printf in the C locale, whatever setlocale() the host has called.
// Not-a-number is "nan", the infinities are "inf" and "-inf". Any thread.

/// "%lld".
std::string decimal(std::int64_t number);

/// "%lld", or nothing for nothing.
std::optional<std::string> decimalOrNothing(std::optional<std::int64_t> number);

/// "%.Nf" with `digits` digits after the point; negative `digits` count as 0.
std::string fixed(double number, int digits);

/// "%g": six significant digits.
std::string generalReal(double number);

/// Formats the shortest text that reads back as the same number: "4" for 4.0, "4.5", "0.1", "1e+30", "1e-05". The
/// exponent form is used below 0.0001 and from 1e16 on, so never for milliseconds since 1970.
std::string shortestReal(double number);

/// Seconds since 1970 as whole milliseconds: "%lld" of seconds * 1000.0, truncated toward zero. Times outside the range
/// are clamped; not-a-number is "0".
std::string milliseconds(double secondsSince1970);

/// Appends decimal(number) without a temporary.
void appendDecimal(std::string& out, std::int64_t number);

/// Appends a number that is not negative with leading zeros, as at least `digits` digits.
void appendDigits(std::string& out, int number, std::size_t digits);

/// Appends shortestReal(number) without a temporary.
void appendShortestReal(std::string& out, double number);

}  // namespace kesu
