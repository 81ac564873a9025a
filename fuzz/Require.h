#pragma once

#include <cstdlib>

namespace kesu::fuzz {

/// Reports the input as a finding when this does not hold.
inline void require(bool holds) {
  if (!holds) {
    std::abort();
  }
}

}  // namespace kesu::fuzz
