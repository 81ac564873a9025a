#pragma once

#include <functional>
#include <string>

namespace kesu::dev {

/// Opens a window of this size and calls `show` once it takes remote keys (arrows, Return, Escape); returns when the
/// popup has been closed, or the window. Returns one sentence when there can be no window. Main thread.
std::string runPreviewWindow(int width, int height, const std::function<void()>& show);

}  // namespace kesu::dev
