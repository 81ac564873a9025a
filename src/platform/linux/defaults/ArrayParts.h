#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace kesu {

/// Property lists of parts of a long array, by their place. A part has kPartElements elements, the last one the rest.
using ArrayParts = std::map<std::size_t, std::string>;

/// Whether a value is an array that is stored in parts.
bool isLongArray(const Value& value);

/// Counts the parts of an array.
std::size_t partCount(const Array& array);

/// Finds the parts of `array` that differ from those of `former` (all of them for null). Nothing when one of them
/// cannot be a property list.
std::optional<ArrayParts> changedParts(const Array& array, const Array* former);

}  // namespace kesu
