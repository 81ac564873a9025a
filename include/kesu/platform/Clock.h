#pragma once

#include <kesu/Export.h>

namespace kesu {

/// The time. Callable from any thread; never fails.
class KESU_API Clock {
 public:
  virtual ~Clock() = default;

  /// Returns the wall-clock time in seconds since 1970-01-01 00:00:00 UTC. It jumps when the clock is set.
  virtual double now() = 0;

  /// Returns seconds on a clock that never jumps; only differences have a meaning.
  virtual double monotonic() = 0;
};

}  // namespace kesu
