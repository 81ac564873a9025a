#pragma once

#include <kesu/foundation/Value.h>

#include <string_view>

namespace kesu {

/// The entry of a header or message that says whether it was read. The inbox writes it.
inline constexpr std::string_view kContentRead = "contentRead";

/// Returns whether a header or message was read: its entry is true, a number other than 0, the text of such a number,
/// "YES" or "true". False without the entry, and for what is no dictionary. Any thread.
bool isContentRead(const Value& header);

}  // namespace kesu
