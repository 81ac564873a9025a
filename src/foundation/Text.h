#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kesu {

/// Whether the character is one of "0" to "9".
constexpr bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Texts are UTF-8. No function fails on invalid bytes: each such byte counts as one character that is no white space.
// Any thread.

/// Whether the text has nothing but white space and newlines (Unicode: U+0009-000D, 0020, 0085, 00A0, 1680, 2000-200B,
/// 2028, 2029, 202F, 205F, 3000).
bool isBlank(std::string_view text);

/// Whether the bytes are UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUtf8(std::string_view text);

/// Returns the first N bytes of the text, N being its length in UTF-16 units, by which the platform counts characters.
/// Kept: digests of names cover this many BYTES, a count of the wrong unit that the receiving side depends on. The cut
/// may fall inside a character.
std::string_view utf8PrefixOfUtf16Length(std::string_view text);

/// Returns what follows the last slash; slashes at the end are ignored ("/tmp/a/" gives "a"). "/" gives "/", "" gives
/// "".
std::string_view lastPathComponent(std::string_view path);

/// Returns what follows the last dot of the last component; "" when the only dot begins the name, or there is none.
std::string_view pathExtension(std::string_view path);

/// Returns the lower-case form of an ASCII letter; any other byte stays. Does not depend on the locale.
char asciiLower(char character);

/// Returns the text with its ASCII letters in lower case.
std::string asciiLowerCase(std::string_view text);

/// Compares texts without regard to the case of ASCII letters.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace kesu
