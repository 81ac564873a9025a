#include "platform/linux/reachability/NameLookups.h"

#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <utility>

#include "platform/linux/base/ServiceThread.h"

namespace kesu {
namespace {

constexpr std::size_t kMostAddresses = 32;  // A name with more is a mistake; all of them would be asked for routes.

}  // namespace

NameLookups::NameLookups(std::shared_ptr<WakeEvent> wake, Resolver resolver) : shared_(std::make_shared<Shared>()) {
  shared_->wake = std::move(wake);
  shared_->resolver = std::move(resolver);
}

bool NameLookups::start(std::uint64_t watchId, std::uint64_t generation, const std::string& hostName) {
  if (!reserve(*shared_)) {
    return false;
  }
  std::thread thread = startServiceThread("kesu-lookup", [shared = shared_, watchId, generation, hostName] {
    finish(*shared, {watchId, generation, shared->resolver(hostName)});
  });
  if (!thread.joinable()) {
    MutexLock lock(shared_->mutex);
    --shared_->inFlight;
    return false;
  }
  thread.detach();
  return true;
}

std::vector<NameLookups::Result> NameLookups::take() {
  MutexLock lock(shared_->mutex);
  return std::exchange(shared_->results, {});
}

bool NameLookups::reserve(Shared& shared) {
  MutexLock lock(shared.mutex);
  if (shared.inFlight >= kMostInFlight) {
    return false;
  }
  ++shared.inFlight;
  return true;
}

void NameLookups::finish(Shared& shared, Result result) {
  {
    MutexLock lock(shared.mutex);
    --shared.inFlight;
    shared.results.push_back(std::move(result));
  }
  shared.wake->signal();
}

std::vector<IpAddress> NameLookups::systemResolver(const std::string& hostName) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* list = nullptr;
  std::vector<IpAddress> addresses;
  if (::getaddrinfo(hostName.c_str(), nullptr, &hints, &list) != 0) {
    return addresses;
  }
  for (const addrinfo* entry = list; entry != nullptr && addresses.size() < kMostAddresses; entry = entry->ai_next) {
    const auto address = IpAddress::fromSocketAddress(entry->ai_addr, entry->ai_addrlen);
    if (address && std::ranges::find(addresses, *address) == addresses.end()) {
      addresses.push_back(*address);
    }
  }
  ::freeaddrinfo(list);
  return addresses;
}

}  // namespace kesu
