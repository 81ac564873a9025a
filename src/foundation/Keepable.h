#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// A copy of a value that a property list can hold: null objects are left out of arrays and dictionaries, at any depth,
/// and characters that XML cannot carry (controls but tab, line feed and carriage return, U+FFFE and U+FFFF) are left
/// out of texts and keys. The null object itself becomes "". Expects what parseJson() returns: valid UTF-8, limited
/// depth. Any thread.
Value keepableCopy(const Value& value);

}  // namespace kesu
