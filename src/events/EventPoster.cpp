#include "events/EventPoster.h"

#include <atomic>

namespace kesu {
namespace {

/// Set while the library is loaded, read by every thread that posts.
std::atomic<EventPoster::Provider> providerOfPoster{nullptr};

}  // namespace

EventPoster& EventPoster::shared() {
  return providerOfPoster.load(std::memory_order_acquire)();
}

EventPoster::Provider EventPoster::setProvider(Provider provider) {
  return providerOfPoster.exchange(provider, std::memory_order_acq_rel);
}

}  // namespace kesu
