#pragma once

#include <kesu/Export.h>

#include <array>
#include <cstdint>
#include <span>

namespace kesu {

/// Source of the chance that identifiers are made of. Callable from any thread; never fails.
class KESU_API Random {
 public:
  virtual ~Random() = default;

  /// Fills `bytes` from the system's generator.
  virtual void fill(std::span<std::uint8_t> bytes) = 0;

  /// The 16 bytes of a new random UUID (version 4).
  std::array<std::uint8_t, 16> uuid();
};

}  // namespace kesu
