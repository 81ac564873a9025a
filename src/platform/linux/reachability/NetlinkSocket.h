#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/reachability/NetlinkMessages.h"

namespace kesu {

/// Asks the kernel's routing tables. Confined to one thread. The kernel answers within the call, without waiting for
/// the network.
class NetlinkSocket {
 public:
  /// Result of a question.
  enum class Outcome {
    answered,    ///< Every message of the answer was passed on.
    refused,     ///< The kernel answered with an error, such as "no route"; see `lastError`.
    unavailable  ///< No answer: no socket (a sandbox may forbid it), or a broken exchange.
  };

  /// Opens the socket; where that fails, every question is unavailable.
  NetlinkSocket();

  /// Sends `request` and calls `each` for every message of the answer, also for a dump that the kernel marks as
  /// interrupted by a change: a change event follows it.
  Outcome ask(NetlinkRequest request, const std::function<void(const NetlinkMessage&)>& each);

  /// The errno value of the last refusal.
  int lastError() const { return lastError_; }

 private:
  bool send(ByteSpan message);
  std::optional<Outcome> take(ByteSpan datagram, const std::function<void(const NetlinkMessage&)>& each);

  UniqueFd fd_;
  std::uint32_t sequence_ = 0;
  int lastError_ = 0;
  std::vector<std::uint8_t> buffer_;
};

}  // namespace kesu
