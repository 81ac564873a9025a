#pragma once

#include <poll.h>

#include <cstdint>
#include <vector>

#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/reachability/IpAddress.h"

namespace kesu {

/// Finds out whether hosts accept TCP connections: connects without blocking and closes at once; nothing is ever sent.
/// Its owner polls. Times are seconds on one clock. Confined to one thread.
class TcpProber {
 public:
  /// How long a connection may take. Longer than the time between two probes: the system repeats a lost packet after 1
  /// s and 3 s, so probes overlap and the first success wins.
  static constexpr double kConnectSeconds = 4.0;

  /// Starts connecting to the first 8 addresses. An address that fails at once is left out silently.
  void start(std::uint64_t watchId, const std::vector<IpAddress>& addresses, int port, double now);

  /// Drops the attempts of a watch.
  void cancel(std::uint64_t watchId);

  /// Appends the descriptors to wait for.
  void appendTo(std::vector<pollfd>& polled) const;

  /// Returns the watches that have connected, each once, and drops their other attempts and those that failed.
  std::vector<std::uint64_t> collect(double now);

  /// When the oldest attempt times out; 0 when there is none.
  double nextDue() const { return attempts_.empty() ? 0.0 : attempts_.front().deadline; }

  bool isIdle() const { return attempts_.empty(); }

 private:
  enum class State : std::uint8_t { connecting, connected, failed };

  struct Attempt {
    std::uint64_t watchId = 0;
    UniqueFd fd;
    double deadline = 0.0;
  };

  static State stateOf(const Attempt& attempt, double now);

  std::vector<Attempt> attempts_;  // Oldest first.
};

}  // namespace kesu
