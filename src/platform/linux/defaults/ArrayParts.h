#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace kesu {

/// Property lists of parts of a long array, by their place. A part has kPartElements elements, the last one as many as
/// are left.
using ArrayParts = std::map<std::size_t, std::string>;

/// Whether a value is an array that is stored in parts.
bool isLongArray(const Value& value);

/// How many parts an array has.
std::size_t partCount(const Array& array);

/// The parts of `array` that `former` (null: nothing) does not have in their place. Nothing when one of them cannot be
/// a property list.
std::optional<ArrayParts> changedParts(const Array& array, const Array* former);

}  // namespace kesu
