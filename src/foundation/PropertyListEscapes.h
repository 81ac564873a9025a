#pragma once

#include <kesu/foundation/Value.h>

#include <optional>

namespace kesu {

// How an escaped property list spells what XML cannot represent, as texts that every parser can read: U+E01B (private
// use) and four lower-case hexadecimal digits stand for one character; a text of U+E01B, "@" and a number stands for a
// date, in seconds since 1970. U+E01B itself is spelled in this way too, so that no text has two meanings. Any thread.

/// Returns a copy in which each text and key can be represented in XML, if it is valid UTF-8, and each date lies within
/// the years 0 to 9999. Nothing when it is nested deeper than a property list may be.
std::optional<Value> withEscapes(const Value& value);

/// Undoes withEscapes(). Nothing when an escape is malformed, or at the same depth.
std::optional<Value> withoutEscapes(const Value& value);

}  // namespace kesu
