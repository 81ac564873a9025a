#pragma once

#include <kesu/ui/Containers.h>

namespace kesu {

/// The window that the user sees, or null. Main thread.
Window* keyWindow();

}  // namespace kesu
