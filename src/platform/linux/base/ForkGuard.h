#pragma once

#include <cstdint>

namespace kesu {

/// Knows whether this process is a forked child of the one in which the guard was made. There, mutexes may be locked by
/// threads that do not exist, and descriptors are shared with the parent: services do nothing in such a child.
class ForkGuard {
 public:
  ForkGuard() : generation_(currentGeneration()) {}

  /// Costs one atomic load. Any thread.
  bool isForkedChild() const { return generation_ != currentGeneration(); }

 private:
  static std::uint32_t currentGeneration();

  std::uint32_t generation_;
};

}  // namespace kesu
