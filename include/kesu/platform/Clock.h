#pragma once

#include <kesu/Export.h>

namespace kesu {

/// Tells the time. Callable from any thread; never fails.
class KESU_API Clock {
 public:
  virtual ~Clock() = default;

  /// Wall-clock time in seconds since 1970-01-01 00:00:00 UTC. May jump when somebody sets the clock.
  virtual double now() = 0;

  /// Seconds on a clock that never jumps; only differences mean anything.
  virtual double monotonic() = 0;
};

}  // namespace kesu
