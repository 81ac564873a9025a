#pragma once

#include <kesu/Export.h>

#include <array>
#include <cstdint>
#include <span>

namespace kesu {

/// Source of random bytes for identifiers. Callable from any thread; never fails.
class KESU_API Random {
 public:
  virtual ~Random() = default;

  /// Fills `bytes` from the system's generator.
  virtual void fill(std::span<std::uint8_t> bytes) = 0;

  /// Makes the 16 bytes of a random UUID (version 4).
  std::array<std::uint8_t, 16> uuid();
};

}  // namespace kesu
