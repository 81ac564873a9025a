#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// How deep arrays and dictionaries may be nested in a property list, written or read.
inline constexpr std::size_t kPropertyListDepthLimit = 512;

/// Larger property lists are not read.
inline constexpr std::size_t kPropertyListSizeLimitBytes = 64u << 20;

/// Writes a value as an XML property list (version 1.0, UTF-8, indented by tabs). Any thread.
///
/// Returns nothing when the value cannot be kept whole, at any depth: the null object, more than
/// kPropertyListDepthLimit levels, a date outside the years 0 to 9999, and any text or key that XML 1.0 cannot
/// represent (invalid UTF-8, U+FFFE, U+FFFF, control characters other than tab, line feed and carriage return): XML has
/// no escape for those, and dropping them would change a record silently.
///
/// parsePropertyList() returns everything else equal, except that dates lose their fraction of a second.
std::optional<std::string> writePropertyList(const Value& value);

/// The same for a dictionary, without copying it into a value.
std::optional<std::string> writePropertyList(const Dictionary& dictionary);

/// Reads an XML property list (UTF-8). Any thread.
///
/// Returns nothing for anything else, the binary form included: malformed XML, unknown elements, a document type with
/// an internal subset (so no entity can be declared), a NUL byte, invalid UTF-8, more than kPropertyListDepthLimit
/// levels or kPropertyListSizeLimitBytes bytes. Integers outside 64 bits with sign become reals. Of equal keys the last
/// value wins.
std::optional<Value> parsePropertyList(std::string_view bytes);

}  // namespace kesu
