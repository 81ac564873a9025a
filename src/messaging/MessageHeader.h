#pragma once

#include <kesu/foundation/Value.h>

#include <string_view>

namespace kesu {

/// The entry of a header or message that tells whether it was read. The inbox writes it.
inline constexpr std::string_view kContentRead = "contentRead";

/// Whether a header or message was read: true, a number other than 0, a text of such a number, "YES" and "true" say so.
/// False without the entry, and for what is no dictionary. Any thread.
bool isContentRead(const Value& header);

}  // namespace kesu
