#pragma once

#include <kesu/ui/Accessibility.h>
#include <kesu/ui/Window.h>

#include <vector>

namespace kesu {

/// What a screen reader reads of a window, in reading order: only what lies in the modal view while one is up, and
/// nothing that is hidden. A dialog comes before what is in it, its headings before the rest. Main thread.
std::vector<AccessibilityNode> accessibilityTree(const Window& window);

}  // namespace kesu
