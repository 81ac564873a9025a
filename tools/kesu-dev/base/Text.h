#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::dev {

/// Replaces every byte that is not valid UTF-8 by U+FFFD, as JSON requires.
std::string validUtf8(std::string_view bytes);

/// Makes a text safe for a line of a terminal. Records come from any sender: control characters (they begin terminal
/// commands) and characters that change the writing direction are written as escapes.
std::string printable(std::string_view bytes);

/// Returns the columns of a text on a terminal, one per code point.
std::size_t displayWidth(std::string_view text);

/// Returns the bytes of the first `columns` code points of a text.
std::size_t bytesOfColumns(std::string_view text, std::size_t columns);

/// Cuts a text to `columns` code points; the last one is an ellipsis when something was cut off.
std::string shortened(std::string_view text, std::size_t columns);

/// Appends blanks up to `columns`; a longer text is returned unchanged.
std::string padded(std::string_view text, std::size_t columns);

/// Concatenates texts with a separator.
std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// Removes the blanks at the end.
std::string trimmedRight(std::string text);

/// Reads a number; nothing unless the text is decimal digits only, within 64 bits.
std::optional<std::int64_t> parseDecimal(std::string_view text);

/// Formats a time of day in local time, "15:04:05.678".
std::string clockText(std::int64_t millisecondsSince1970);

/// Formats an instant in UTC, "2026-01-31T15:04:05.678Z".
std::string utcText(std::int64_t millisecondsSince1970);

/// Returns the current time in milliseconds since 1970.
std::int64_t nowMilliseconds();

}  // namespace kesu::dev
