#pragma once

#include <functional>
#include <string>

namespace kesu::dev {

/// Opens a window of this size, calls `show` once it accepts remote keys (arrows, Return, Escape), and returns when the
/// popup or the window was closed. Returns one sentence when there is no window. Main thread.
std::string runPreviewWindow(int width, int height, const std::function<void()>& show);

}  // namespace kesu::dev
