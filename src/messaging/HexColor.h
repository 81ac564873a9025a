#pragma once

#include <kesu/graphics/Color.h>

#include <optional>
#include <string_view>

namespace kesu {

/// Returns the opaque colour that a text such as "#1E90FF", "0x1e90ff" or "1E90FF" names: every "#" and, in front,
/// symbols ("$", "+", "<", "=", ">", "^", "`", "|", "~" and those of Latin-1) are skipped, then hexadecimal digits are
/// read up to the first other character. More than eight digits give white, none give nothing. Any thread.
std::optional<Color> colorFromHexadecimalString(std::string_view text);

/// Returns whether the text has a character outside "0123456789ABCDEF".
/// Kept: the result is the inverse of its name. "#1E90FF" and "0x1e90ff" pass and select the message's colour, the bare
/// "1E90FF" fails and selects the default: messages in the field were made with this in mind.
bool isValidHexadecimalString(std::string_view text);

}  // namespace kesu
