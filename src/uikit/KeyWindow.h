#pragma once

#include <kesu/ui/Window.h>

#include <cstdint>
#include <functional>

namespace kesu {

/// The window that the user sees, or null. Main thread.
Window* keyWindow();

/// A number that changes whenever another window, or none, has become the key one; never 0. Unlike an address, it never
/// identifies two windows. Main thread.
std::uint64_t keyWindowNumber();

/// Sets the callback for changes of that number, called synchronously, also while the former key window is being
/// destroyed. One at a time, for the overlay. Main thread.
void setKeyWindowCallback(std::function<void()> callback);

}  // namespace kesu
