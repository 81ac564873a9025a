#pragma once

#include <kesu/platform/Random.h>

#include <array>
#include <cstddef>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"

namespace kesu {

/// The kernel's generator. A system without one ends the process: identifiers that repeat would mix up installations.
///
/// Identifiers are served from a block that is read ahead, for a system call costs more than all else that makes one.
/// Bytes are wiped from it as they are given away. A forked child, which has a copy of the block, reads none of it.
class LinuxRandom final : public Random {
 public:
  /// Longer requests go to the kernel directly.
  static constexpr std::size_t kLongestFromBlock = 32;

  void fill(std::span<std::uint8_t> bytes) override;

 private:
  const ForkGuard forkGuard_;
  Mutex mutex_;
  std::array<std::uint8_t, 512> block_ KESU_GUARDED_BY(mutex_){};
  std::size_t left_ KESU_GUARDED_BY(mutex_) = 0;  // Bytes at the beginning of the block that were not given away.
};

}  // namespace kesu
