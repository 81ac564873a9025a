#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <cstdint>

namespace kesu {

/// The index of the message that is shown first. Any thread.
/// Kept: it is the number of read headers in front of the last unread one, not that one's place; 0 when none is unread.
std::int64_t firstMessageIndex(const Array& headers);

/// [changeTemplate:] The index after a press of an arrow: one further for kNextTag, one back for every other tag, and
/// the same at the ends. Any thread.
std::int64_t pagedIndex(std::int64_t tag, std::int64_t index, std::size_t count);

}  // namespace kesu
