#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu::dev {

/// The text with every byte that is no valid UTF-8 replaced by U+FFFD, so that it can stand in a JSON text.
std::string validUtf8(std::string_view bytes);

/// The text as one harmless piece of a terminal line. Records come from whoever posts them: control characters (the
/// start of terminal commands) and characters that turn the writing direction are written as escapes.
std::string printable(std::string_view bytes);

/// How many columns a text takes on a terminal: one a code point.
std::size_t displayWidth(std::string_view text);

/// The first `columns` code points of a text, with an ellipsis in the last column when something was cut off.
std::string shortened(std::string_view text, std::size_t columns);

/// The number when the text is nothing but decimal digits (and fits), else nothing.
std::optional<std::int64_t> parseDecimal(std::string_view text);

/// Lower-case form of the ASCII letters; other bytes stay.
std::string lowerAscii(std::string_view text);

/// A time of day on this machine's clock, "15:04:05.678", from milliseconds since 1970.
std::string clockText(std::int64_t millisecondsSince1970);

/// The same instant as "2026-01-31T15:04:05.678Z".
std::string utcText(std::int64_t millisecondsSince1970);

/// Now, in milliseconds since 1970.
std::int64_t nowMilliseconds();

}  // namespace kesu::dev
