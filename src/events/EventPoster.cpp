#include "events/EventPoster.h"

#include <atomic>

namespace kesu {
namespace {

std::atomic<EventPoster& (*)()> providerOfPoster{nullptr};

}  // namespace

EventPoster& EventPoster::shared() {
  return providerOfPoster.load(std::memory_order_acquire)();
}

void EventPoster::setProvider(EventPoster& (*provider)()) {
  providerOfPoster.store(provider, std::memory_order_release);
}

}  // namespace kesu
