#pragma once

#include <kesu/platform/Random.h>

namespace kesu {

/// The kernel's generator. A system without one ends the process: identifiers that repeat would mix up installations.
class LinuxRandom final : public Random {
 public:
  void fill(std::span<std::uint8_t> bytes) override;
};

}  // namespace kesu
