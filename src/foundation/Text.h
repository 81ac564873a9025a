#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kesu {

// Texts are UTF-8. None of these functions fails on invalid bytes: each such byte counts as one character that is no
// white space. Any thread.

/// The text without any white-space or newline character, wherever it stands (Unicode: U+0009-000D, 0020, 0085, 00A0,
/// 1680, 2000-200B, 2028, 2029, 202F, 205F, 3000).
std::string strippedOfWhitespace(std::string_view text);

/// Whether strippedOfWhitespace(text) is empty, found without building it.
bool isBlank(std::string_view text);

/// The number of UTF-16 units of the text, the length by which the platform counts characters.
std::size_t utf16Length(std::string_view text);

/// Whether the bytes are UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUtf8(std::string_view text);

/// The first N bytes of the text, N being its length in UTF-16 units. Kept: digests of names cover this many BYTES, a
/// count of the wrong unit that the receiving side depends on. The cut may fall inside a character.
std::string_view utf8PrefixOfUtf16Length(std::string_view text);

/// What follows the last slash; slashes at the end do not count ("/tmp/a/" gives "a"). "/" gives "/", "" gives "".
std::string_view lastPathComponent(std::string_view path);

/// What follows the last dot of the last component; "" when there is no dot or only the one that begins the name.
std::string_view pathExtension(std::string_view path);

/// The lower-case form of an ASCII letter; any other byte stays. Does not depend on the locale.
char asciiLower(char character);

/// The text with its ASCII letters in lower case.
std::string asciiLowerCase(std::string_view text);

/// Whether the texts are equal when the ASCII letters of either case count as equal.
bool equalsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace kesu
