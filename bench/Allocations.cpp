#include "Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocationCount = 0;

}  // namespace

namespace kesu::bench {

std::size_t allocationsOfThisThread() {
  return allocationCount;
}

}  // namespace kesu::bench

// The other forms, but for those with an alignment, end in these.
void* operator new(std::size_t size) {
  ++allocationCount;
  void* const memory = std::malloc(size != 0 ? size : 1);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
