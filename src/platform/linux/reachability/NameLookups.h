#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/WakeEvent.h"
#include "platform/linux/reachability/IpAddress.h"

namespace kesu {

/// Looks host names up in the background. A lookup of the system cannot be cancelled and may take half a minute: each
/// runs on a short-lived thread of its own, and the state that the threads share outlives this object, so that
/// destroying it does not wait. Lookups may overtake each other; the highest generation is the newest. Confined to one
/// thread.
class NameLookups {
 public:
  /// Result of one lookup; no addresses: it failed.
  struct Result {
    std::uint64_t watchId = 0;
    std::uint64_t generation = 0;
    std::vector<IpAddress> addresses;  ///< In the order in which they should be tried.
  };

  /// Finds the addresses of a name; blocks. Runs on any thread, several at once.
  using Resolver = std::function<std::vector<IpAddress>(const std::string& hostName)>;

  /// At most this many lookups run at once: each is a thread, and a name server that is gone holds them all.
  static constexpr int kMostInFlight = 4;

  /// `wake` is signalled when a result is ready. `resolver` replaces the system's.
  explicit NameLookups(std::shared_ptr<WakeEvent> wake, Resolver resolver = systemResolver);

  /// Starts a lookup whose result has these two numbers. Returns false when too many are running or the system refuses
  /// a thread.
  bool start(std::uint64_t watchId, std::uint64_t generation, const std::string& hostName);

  /// Removes and returns the results so far.
  std::vector<Result> take();

  /// Asks the system's name services. Blocks.
  static std::vector<IpAddress> systemResolver(const std::string& hostName);

 private:
  struct Shared {
    std::shared_ptr<WakeEvent> wake;
    Resolver resolver;
    Mutex mutex;
    int inFlight KESU_GUARDED_BY(mutex) = 0;
    std::vector<Result> results KESU_GUARDED_BY(mutex);
  };

  static bool reserve(Shared& shared);
  static void finish(Shared& shared, Result result);

  std::shared_ptr<Shared> shared_;
};

}  // namespace kesu
