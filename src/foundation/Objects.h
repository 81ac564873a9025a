#pragma once

#include <kesu/foundation/Value.h>

#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// The text that an object is; nothing for nil and for every other kind. Any thread.
std::optional<std::string> textOf(const Object& object);

/// Sets an entry of a dictionary, or leaves the dictionary alone for nil. Any thread.
void setUnlessNil(Dictionary& dictionary, std::string_view key, const Object& object);

}  // namespace kesu
