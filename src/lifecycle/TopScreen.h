#pragma once

#include <optional>

#include "lifecycle/ScreenFlow.h"

namespace kesu {

/// Knows which screen is on top. Main thread.
class TopScreen {
 public:
  virtual ~TopScreen() = default;

  /// Returns the screen on top; nothing when there is none.
  virtual std::optional<ScreenKey> topScreen() = 0;
};

}  // namespace kesu
