#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// Copies a value so that it fits in a property list: null objects are left out of arrays and dictionaries, at any
/// depth, and characters that XML cannot represent (controls but tab, line feed and carriage return, U+FFFE and U+FFFF)
/// are left out of texts and keys. The null object itself becomes "". Expects what parseJson() returns: valid UTF-8,
/// limited depth. Any thread.
Value keepableCopy(const Value& value);

}  // namespace kesu
