#pragma once

#include <kesu/foundation/Value.h>

#include <string>

namespace kesu {

/// What log lines have in place of a value that is missing.
inline constexpr const char* kDescriptionOfNothing = "(null)";

/// Formats a value for log lines; also sent in place of a value that JSON does not know. Any thread.
///
/// A text is unchanged, numbers are decimal, bool as "1" or "0", the null object as "<null>", a date as
/// "2017-03-15 12:02:00 +0000" (UTC, whole seconds; "<date>" when it is outside the years 0 to 9999), data as
/// "<01020304 0506>". Arrays and dictionaries take one line per entry, indented by four spaces:
/// "(\n    a,\n    b\n)" and "{\n    key = value;\n}". In them a text is put in quotes unless it consists of ASCII
/// letters, digits and "_./$:" only. What is nested deeper than 64 levels is written as "...".
std::string describe(const Value& value);

/// The same for a value that may be missing: null is kDescriptionOfNothing.
std::string describe(const Value* value);

/// The same for a dictionary, without copying it into a value.
std::string describe(const Dictionary& dictionary);

}  // namespace kesu
