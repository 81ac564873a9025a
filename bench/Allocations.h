#pragma once

#include <cstddef>

namespace kesu::bench {

/// How often the calling thread has used operator new so far: this program replaces it.
std::size_t allocationsOfThisThread();

}  // namespace kesu::bench
