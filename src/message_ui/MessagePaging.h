#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <cstdint>

namespace kesu {

// Tags of the paging arrows; hosts receive them as the index of a button.
inline constexpr std::int64_t kPreviousTag = 10;
inline constexpr std::int64_t kNextTag = 11;

/// Returns the index of the message that is shown first. Any thread.
/// Kept: it is the number of read headers in front of the last unread one, not that one's place; 0 when none is unread.
std::int64_t firstMessageIndex(const Array& headers);

/// Returns the index after a press of an arrow: one further for kNextTag, one back for every other tag, and the same at
/// the ends. Any thread. [changeTemplate:]
std::int64_t pagedIndex(std::int64_t tag, std::int64_t index, std::size_t count);

}  // namespace kesu
