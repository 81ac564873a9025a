#pragma once

#include <kesu/ui/Window.h>

#include <cstdint>
#include <functional>

namespace kesu {

/// The window that the user sees, or null. Main thread.
Window* keyWindow();

/// Another number whenever another window, or none, has become the key one; never 0. Windows are told apart by it,
/// since one may get the address of another that is gone. Main thread.
std::uint64_t keyWindowNumber();

/// Called whenever that number has changed, also while the former key window is being destroyed. One at a time, for who
/// draws the key window. Main thread.
void setKeyWindowCallback(std::function<void()> callback);

}  // namespace kesu
