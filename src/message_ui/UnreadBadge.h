#pragma once

#include <kesu/ui/View.h>

#include <cstdint>

namespace kesu {

/// Adds a badge with this count, also when it is 0, on the view's upper right corner, in front of everything in its
/// superview; each call adds another one. Nothing happens for a view without superview. Main thread. [addBadge:]
/// Kept: the badge's corner radius is larger than half of its side.
void addUnreadBadge(View& view, std::int64_t count);

}  // namespace kesu
