#include "platform/linux/reachability/NetlinkSocket.h"

#include <linux/netlink.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <span>
#include <utility>

namespace kesu {
namespace {

constexpr std::size_t kBufferBytes = 32768;  // The largest datagram that a dump is cut into.
constexpr long kAnswerSeconds = 1;           // Answers come at once; this only bounds a broken exchange.

}  // namespace

NetlinkSocket::NetlinkSocket()
    : fd_(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)), buffer_(kBufferBytes) {
  const timeval limit{kAnswerSeconds, 0};
  ::setsockopt(fd_.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

bool NetlinkSocket::send(ByteSpan message) {
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  const auto* address = reinterpret_cast<const sockaddr*>(&kernel);
  return ::sendto(fd_.get(), message.data(), message.size(), 0, address, sizeof kernel) ==
         static_cast<ssize_t>(message.size());
}

NetlinkSocket::Outcome NetlinkSocket::ask(NetlinkRequest request,
                                          const std::function<void(const NetlinkMessage&)>& each) {
  if (!fd_ || !send(request.finish(++sequence_))) {
    return Outcome::unavailable;
  }
  while (true) {
    const ssize_t length = ::recv(fd_.get(), buffer_.data(), buffer_.size(), 0);
    if (length < 0 && errno == EINTR) {
      continue;
    }
    if (length <= 0) {
      return Outcome::unavailable;
    }
    if (const auto outcome = take(std::span(buffer_).first(static_cast<std::size_t>(length)), each)) {
      return *outcome;
    }
  }
}

std::optional<NetlinkSocket::Outcome> NetlinkSocket::take(ByteSpan datagram,
                                                          const std::function<void(const NetlinkMessage&)>& each) {
  std::optional<Outcome> outcome;
  forEachNetlinkMessage(datagram, [&](const NetlinkMessage& message) {
    if (message.sequence != sequence_ || outcome) {
      return;  // What is left of an exchange that was given up.
    }
    if (message.type == NLMSG_DONE) {
      outcome = Outcome::answered;
    } else if (message.type == NLMSG_ERROR) {
      const auto error = readStruct<nlmsgerr>(message.payload);
      lastError_ = error ? -error->error : EPROTO;
      outcome = lastError_ == 0 ? Outcome::answered : Outcome::refused;
    } else {
      each(message);
      // Kept: only dumps are cut into parts and end with a message of their own.
      outcome = (message.flags & NLM_F_MULTI) != 0 ? std::nullopt : std::optional(Outcome::answered);
    }
  });
  return outcome;
}

}  // namespace kesu
