#include "tools/loopback/Connection.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace kesu::loopback {
namespace {

constexpr std::chrono::milliseconds kTransferPatience{15'000};
constexpr std::size_t kReadBytes = std::size_t{16} * 1024;
constexpr std::size_t kGatherBytes = std::size_t{64} * 1024;
constexpr std::size_t kDrainBytes = std::size_t{1024} * 1024;
constexpr std::chrono::milliseconds kDrainPatience{200};

// A connection of which one side is unknown is described as the loopback it must be.
void describe(const sockaddr_in& address, std::string& ip, int& port) {
  char text[INET_ADDRSTRLEN] = "127.0.0.1";
  inet_ntop(AF_INET, &address.sin_addr, text, sizeof text);
  ip = text;
  port = ntohs(address.sin_port);
}

}  // namespace

Connection::Connection(int socket, ssl_ctx_st* tls) : socket_(socket), incoming_(kReadBytes) {
  const int on = 1;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  fcntl(socket_, F_SETFD, FD_CLOEXEC);
  if (tls != nullptr) {
    tls_.emplace(*tls, socket_, [this](short events) { return waitFor(events, kTransferPatience); });
  }
}

Connection::~Connection() {
  if (tls_ && !aborted_) {
    tls_->sayGoodbye();
  }
  close(socket_);
}

bool Connection::open() {
  return !tls_ || tls_->accept();
}

bool Connection::waitForRequest(std::chrono::milliseconds patience) {
  return incomingBegin_ < incomingEnd_ || (waitForInput(patience) && fill());
}

void Connection::abort() {
  aborted_ = true;
  shutdown(socket_, SHUT_RDWR);
}

bool Connection::isGone() const {
  pollfd entry{socket_, POLLRDHUP, 0};
  return aborted_ || (poll(&entry, 1, 0) > 0 && entry.revents != 0);
}

bool Connection::flush() {
  const bool sent = tls_ ? !aborted_ && tls_->write(outgoing_) : sendAll();
  if (!sent) {
    abort();
  }
  outgoing_.clear();
  return sent;
}

bool Connection::sendAll() {
  std::size_t sent = 0;
  while (sent < outgoing_.size() && !aborted_) {
    const ssize_t count = send(socket_, outgoing_.data() + sent, outgoing_.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      sent += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN ? !waitFor(POLLOUT, kTransferPatience) : errno != EINTR) {
      return false;
    }
  }
  return !aborted_;
}

void Connection::drain() {
  if (tls_) {
    tls_->sayGoodbye();
  }
  shutdown(socket_, SHUT_WR);
  std::size_t total = incomingEnd_ - incomingBegin_;
  while (total < kDrainBytes && waitForInput(kDrainPatience) && fill()) {
    total += incomingEnd_;
  }
}

bool Connection::is_readable() const {
  return incomingBegin_ < incomingEnd_ || waitForInput(kTransferPatience);
}

bool Connection::is_writable() const {
  return !aborted_ && waitFor(POLLOUT, kTransferPatience);
}

ssize_t Connection::read(char* out, size_t size) {
  // An interim reply ("100 Continue") must be out before the body that it asks for can come in.
  if (incomingBegin_ == incomingEnd_ && !(flush() && waitForInput(kTransferPatience) && fill())) {
    return -1;
  }
  const std::size_t count = std::min(size, incomingEnd_ - incomingBegin_);
  std::memcpy(out, incoming_.data() + incomingBegin_, count);
  incomingBegin_ += count;
  return static_cast<ssize_t>(count);
}

ssize_t Connection::write(const char* bytes, size_t size) {
  if (aborted_) {
    return -1;
  }
  outgoing_.append(bytes, size);
  const bool mustSend = !gathers_ || outgoing_.size() >= kGatherBytes;
  return !mustSend || flush() ? static_cast<ssize_t>(size) : -1;
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getpeername(socket_, reinterpret_cast<sockaddr*>(&address), &length);
  describe(address, ip, port);
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
  sockaddr_in address{};
  socklen_t length = sizeof address;
  getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
  describe(address, ip, port);
}

bool Connection::waitFor(short events, std::chrono::milliseconds patience) const {
  pollfd entry{socket_, events, 0};
  int result = 0;
  do {
    result = poll(&entry, 1, static_cast<int>(patience.count()));
  } while (result < 0 && errno == EINTR);
  return result > 0 && !aborted_;
}

bool Connection::waitForInput(std::chrono::milliseconds patience) const {
  return (tls_ && tls_->hasInput()) || waitFor(POLLIN, patience);
}

bool Connection::fill() {
  ssize_t count = 0;
  do {
    count =
        tls_ ? tls_->read(incoming_.data(), incoming_.size()) : recv(socket_, incoming_.data(), incoming_.size(), 0);
  } while (!tls_ && count < 0 && errno == EINTR);
  incomingBegin_ = 0;
  incomingEnd_ = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count > 0;
}

}  // namespace kesu::loopback
