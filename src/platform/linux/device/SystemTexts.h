#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

// Reading the small texts by which the system describes itself. All pure: any bytes may come, and what does not have
// the expected form gives nothing.

/// The value of a line "Name:   123 kB" in bytes.
std::optional<std::uint64_t> bytesOfLine(std::string_view text, std::string_view name);

/// The text after the colon of the first line "name : text", without the blanks around it.
std::optional<std::string_view> valueOfLine(std::string_view text, std::string_view name);

/// The value of a line NAME=value, NAME="value" or NAME='value' as a shell reads it, in cleaned form; nothing when
/// there is none or it is empty.
std::optional<std::string> assignedValue(std::string_view text, std::string_view name);

/// A whole number, blanks around it allowed.
std::optional<std::int64_t> wholeNumber(std::string_view text);

/// A number with or without decimals ("2596.138"), times `factor`, rounded down; nothing below 0 or when it would not
/// fit.
std::optional<std::int64_t> scaledNumber(std::string_view text, double factor);

/// The height of a display mode such as "1920x1080" or "1280x720i"; nothing for sizes that no screen has.
std::optional<int> heightOfMode(std::string_view mode);

/// Makes a text of the system fit for a record: bytes that are no UTF-8 and control characters become "?".
std::string cleanText(std::string_view text);

/// The UUID that stands for an installation of the system, made from its "machine-id" (32 hexadecimal digits). The
/// identifier itself is confidential: only a digest of it leaves the device, always the same for the same identifier.
std::optional<std::string> uuidOfMachine(std::string_view machineId);

}  // namespace kesu
