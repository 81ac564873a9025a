#pragma once

#include <kesu/Export.h>

#include <functional>

namespace kesu {

/// Told once when an animation is over: true when it ran to its end, false when another one took over or the view went
/// away. Main thread, inside Overlay's frame or MainLoop::pump().
using AnimationCompletion = std::function<void(bool finished)>;

/// Runs `changes` at once; what they set on views (place, size, transform, alpha, shadow) is reached on the screen
/// within `durationSeconds`, slow at both ends. A value that is set again meanwhile goes on from where it is, and the
/// earlier animation ends unfinished. A duration of 0 (or less, or NaN) sets everything at once and calls `completion`
/// before it returns; the longest is an hour. Animations that nobody draws are ended by the main loop, a second
/// late. Either function may be empty, and may animate and take views away itself; `completion` outlives the call. Main
/// thread.
KESU_API void animate(double durationSeconds, const std::function<void()>& changes,
                      AnimationCompletion completion = {});

}  // namespace kesu
