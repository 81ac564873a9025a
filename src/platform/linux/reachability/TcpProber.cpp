#include "platform/linux/reachability/TcpProber.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace kesu {
namespace {

// Each is a descriptor of the host's process for up to 4 s, and there may be four probes at a time.
constexpr std::size_t kMostProbes = 8;

UniqueFd beginConnecting(const IpAddress& address, int port) {
  UniqueFd fd(::socket(address.systemFamily(), SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  sockaddr_storage to{};
  const std::uint32_t length = address.toSocketAddress(port, to);
  if (fd && ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&to), length) != 0 && errno != EINPROGRESS) {
    fd.reset();
  }
  return fd;
}

}  // namespace

void TcpProber::start(std::uint64_t watchId, const std::vector<IpAddress>& addresses, int port, double now) {
  for (std::size_t i = 0; i < std::min(addresses.size(), kMostProbes); ++i) {
    if (UniqueFd fd = beginConnecting(addresses[i], port)) {
      attempts_.push_back({watchId, std::move(fd), now + kConnectSeconds});
    }
  }
}

void TcpProber::cancel(std::uint64_t watchId) {
  std::erase_if(attempts_, [watchId](const Attempt& attempt) { return attempt.watchId == watchId; });
}

void TcpProber::appendTo(std::vector<pollfd>& polled) const {
  for (const Attempt& attempt : attempts_) {
    polled.push_back({attempt.fd.get(), POLLOUT, 0});
  }
}

std::vector<std::uint64_t> TcpProber::collect(double now) {
  std::vector<std::uint64_t> connected;
  std::erase_if(attempts_, [&](const Attempt& attempt) {
    const State state = stateOf(attempt, now);
    if (state == State::connected && std::ranges::find(connected, attempt.watchId) == connected.end()) {
      connected.push_back(attempt.watchId);
    }
    return state != State::connecting;
  });
  std::ranges::for_each(connected, [this](std::uint64_t watchId) { cancel(watchId); });
  return connected;
}

TcpProber::State TcpProber::stateOf(const Attempt& attempt, double now) {
  pollfd polled{attempt.fd.get(), POLLOUT, 0};
  if (::poll(&polled, 1, 0) <= 0) {
    return now < attempt.deadline ? State::connecting : State::failed;
  }
  int error = 0;
  socklen_t length = sizeof error;
  const bool known = ::getsockopt(attempt.fd.get(), SOL_SOCKET, SO_ERROR, &error, &length) == 0;
  return known && error == 0 ? State::connected : State::failed;
}

}  // namespace kesu
