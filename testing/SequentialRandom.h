#pragma once

#include <kesu/platform/Random.h>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// Counts instead of drawing: every call fills its bytes with the next number (big-endian, so that an identifier ends
/// with its number). The first identifier is 00000000-0000-4000-8000-000000000001.
class SequentialRandom : public Random {
 public:
  void fill(std::span<std::uint8_t> bytes) override {
    const MutexLock lock(mutex_);
    std::uint64_t rest = ++count_;
    for (std::size_t index = bytes.size(); index > 0; --index) {
      bytes[index - 1] = static_cast<std::uint8_t>(rest & 0xFFU);
      rest >>= 8U;
    }
  }

 private:
  Mutex mutex_;
  std::uint64_t count_ KESU_GUARDED_BY(mutex_) = 0;
};

}  // namespace kesu::testing
