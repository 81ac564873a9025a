#pragma once

#include <kesu/foundation/Value.h>

namespace kesu {

/// Copies a value so that the user defaults accept it: null objects are left out of arrays and dictionaries, at any
/// depth. The null object itself becomes "". Expects what parseJson() returns: valid UTF-8, limited depth. Any thread.
Value keepableCopy(const Value& value);

}  // namespace kesu
