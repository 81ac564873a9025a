#pragma once

#include <kesu/ui/Label.h>

#include <cstdint>
#include <memory>

namespace kesu {

/// Returns the frame of a badge on a view's upper right corner, in points of the view's superview. Any thread.
Rect unreadBadgeFrame(const Rect& viewFrame);

/// Makes a badge that shows this count, also when it is 0. Main thread.
/// Kept: its corner radius is larger than half of its side.
std::shared_ptr<Label> makeUnreadBadge(std::int64_t count, const Rect& viewFrame);

/// Adds such a badge beside the view, in front of everything in its superview; each call adds another one. Nothing
/// happens for a view without superview. Main thread. [addBadge:]
void addUnreadBadge(View& view, std::int64_t count);

}  // namespace kesu
