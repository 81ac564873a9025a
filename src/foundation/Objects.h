#pragma once

#include <kesu/foundation/Value.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// Returns the text that an object is; nothing for nil and for every other kind. Any thread.
std::optional<std::string> textOf(const Object& object);

/// Return what a dictionary has under a key. Without an entry, or with one of another kind: nil, "" and 0. Any thread.
Object valueIn(const Dictionary& dictionary, std::string_view key);
std::string textIn(const Dictionary& dictionary, std::string_view key);
std::int64_t integerIn(const Dictionary& dictionary, std::string_view key);

/// Sets an entry of a dictionary, or leaves the dictionary alone for nil. Any thread.
void setUnlessNil(Dictionary& dictionary, std::string_view key, const Object& object);

}  // namespace kesu
