#pragma once

namespace kesu {

/// The buttons of a television remote.
enum class RemoteButton { Up, Down, Left, Right, Select, Menu, PlayPause };

/// What happens to a button. A held arrow may begin again and again (key repeat); Select and Menu begin once.
enum class PressPhase {
  Began,
  Ended,
  Cancelled  ///< The system took the press away, for example because the application lost the input.
};

/// A quick stroke over a touch surface.
enum class SwipeDirection { Left, Right, Up, Down };

}  // namespace kesu
