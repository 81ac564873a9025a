#pragma once

namespace kesu {

/// The buttons of a television remote.
enum class RemoteButton { Up, Down, Left, Right, Select, Menu, PlayPause };

/// The phase of a press. A held arrow may begin repeatedly (key repeat); Select and Menu begin once.
enum class PressPhase {
  Began,
  Ended,
  Cancelled  ///< The system ended the press, for example because the application lost the input.
};

/// A quick stroke over a touch surface.
enum class SwipeDirection { Left, Right, Up, Down };

}  // namespace kesu
