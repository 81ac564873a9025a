#pragma once

#include <poll.h>

#include <cstdint>
#include <vector>

#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/reachability/IpAddress.h"

namespace kesu {

/// Finds out whether hosts accept TCP connections: connects without waiting and closes at once, nothing is ever sent.
/// Its owner polls. Times are seconds of one clock. Confined to one thread.
class TcpProber {
 public:
  /// So long a connection may take. Longer than the distance of two probes: the system repeats a lost packet after 1 s
  /// and 3 s, so probes overlap and the first success wins.
  static constexpr double kConnectSeconds = 4.0;

  /// Starts connecting to the first 8 addresses at once. An address that fails at once is left out silently.
  void start(std::uint64_t watchId, const std::vector<IpAddress>& addresses, int port, double now);

  /// Gives up what is under way for a watch.
  void cancel(std::uint64_t watchId);

  /// Appends what to wait for.
  void appendTo(std::vector<pollfd>& polled) const;

  /// Looks at what is under way and returns the watches that connected, each once; the rest of theirs is given up.
  std::vector<std::uint64_t> collect(double now);

  /// When the oldest connection is to be given up; 0 when nothing is under way.
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
