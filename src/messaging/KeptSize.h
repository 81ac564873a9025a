#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>

namespace kesu {

/// Estimates how many bytes a value takes as a property list: texts and keys in full, a constant for their markup. The
/// value must be one that keepableCopy() returned (limited depth). Any thread.
std::size_t keptSize(const Value& value);

}  // namespace kesu
