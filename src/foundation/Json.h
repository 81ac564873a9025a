#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace kesu {

/// How deep arrays and dictionaries may be nested in a JSON text, written or read.
inline constexpr std::size_t kJsonDepthLimit = 512;

/// How many values, at any depth, a JSON text may have to be read. Small values take some 50 times their text in
/// memory; the replies of a service have a few thousand.
inline constexpr std::size_t kJsonValuesLimit = 200'000;

/// Result of writing a value as JSON.
enum class JsonStatus {
  Ok,        ///< The text is complete.
  NotValid,  ///< It contains what JSON does not know: a date, data, NaN or an infinity.
  TooDeep,   ///< Arrays and dictionaries are nested more than kJsonDepthLimit deep.
  BadText,   ///< A text or a key is not valid UTF-8.
};

/// Writes a dictionary as compact JSON: UTF-8, keys in insertion order, no white space.
///
/// `out` is replaced, and is empty after any status but Ok. Its capacity is used again, so a caller that writes many
/// records keeps one string. The status doubles as the test "is this a valid JSON object?". A real without fraction is
/// written as the integer it equals ("4"), therefore it is read back as one. Any thread.
JsonStatus writeJson(const Dictionary& dictionary, std::string& out);

/// One entry of an object whose entries are not in one dictionary. Refers to its key and its value.
struct JsonField {
  std::string_view key;
  const Value* value = nullptr;  ///< Never null.
};

/// The same for such entries; their keys differ.
JsonStatus writeJson(std::span<const JsonField> fields, std::string& out);

/// The same for any value; a text or a number alone is a JSON text too.
JsonStatus writeJson(const Value& value, std::string& out);

/// Reads one JSON text (UTF-8, with or without byte order mark).
///
/// Returns nothing for anything malformed: invalid UTF-8, half of a surrogate pair, a NUL byte, nesting beyond
/// kJsonDepthLimit, more than kJsonValuesLimit values, text after the value, a number too large for a double (one too
/// small is 0). Of equal keys the last value wins and keeps the first one's place. Integers outside 64 bits with sign
/// become reals; "4.0" is a real. Any thread.
std::optional<Value> parseJson(std::string_view text);

}  // namespace kesu
