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

/// What becomes of what XML 1.0 cannot represent: control characters other than tab, line feed and carriage return,
/// U+FFFE and U+FFFF in texts and keys, and dates outside the years 0 to 9999.
enum class PropertyListForm {
  Standard,  ///< It cannot be written, and every text is read as it stands: for lists that other programs make or read.
  Escaped    ///< It is written as escapes, which reading undoes: for files that only the library reads.
};

/// Writes a value as an XML property list (version 1.0, UTF-8, indented by tabs). Any thread.
///
/// Returns nothing when the value cannot be kept whole, at any depth: the null object, more than
/// kPropertyListDepthLimit levels, invalid UTF-8, and what the form refuses; dropping any of it would change a record
/// silently.
///
/// The two forms differ only when there is something to escape: a comment in the head then marks the list, and other
/// programs can read it, too. parsePropertyList() with the same form returns everything equal, except that dates lose
/// their fraction of a second.
std::optional<std::string> writePropertyList(const Value& value, PropertyListForm form = PropertyListForm::Standard);

/// The same for a dictionary, without copying it into a value.
std::optional<std::string> writePropertyList(const Dictionary& dictionary,
                                             PropertyListForm form = PropertyListForm::Standard);

/// Reads an XML property list (UTF-8). Any thread.
///
/// Returns nothing for anything else, the binary form included: malformed XML, unknown elements, a document type with
/// an internal subset (so no entity can be declared), a NUL byte, invalid UTF-8, more than kPropertyListDepthLimit
/// levels or kPropertyListSizeLimitBytes bytes. Integers outside 64 bits with sign become reals. Of equal keys the last
/// value wins.
///
/// The escaped form undoes escapes in a list that is marked, and returns nothing when one is malformed; it reads any
/// other list as the standard form does.
std::optional<Value> parsePropertyList(std::string_view bytes, PropertyListForm form = PropertyListForm::Standard);

}  // namespace kesu
