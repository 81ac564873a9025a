#include "platform/linux/base/ForkGuard.h"

#include <pthread.h>

#include <atomic>

namespace kesu {
namespace {

std::atomic<std::uint32_t> generation{1};

bool countForks() {
  return pthread_atfork(nullptr, nullptr, [] { generation.fetch_add(1, std::memory_order_relaxed); }) == 0;
}

}  // namespace

std::uint32_t ForkGuard::currentGeneration() {
  [[maybe_unused]] static const bool isCounting = countForks();
  return generation.load(std::memory_order_relaxed);
}

}  // namespace kesu
