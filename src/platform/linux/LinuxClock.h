#pragma once

#include <kesu/platform/Clock.h>

namespace kesu {

/// The system's clocks. monotonic() stands still while the machine sleeps.
class LinuxClock final : public Clock {
 public:
  double now() override;
  double monotonic() override;
};

}  // namespace kesu
