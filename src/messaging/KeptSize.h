#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>

namespace kesu {

/// About how many bytes a value takes as a property list: texts and keys in full, a guess for what surrounds them.
/// Expects a value that can be kept (limited depth). Any thread.
std::size_t keptSize(const Value& value);

}  // namespace kesu
