#include "tools/loopback/Connection.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace kesu::loopback {
namespace {

constexpr std::size_t kReadBytes = std::size_t{16} * 1024;
constexpr std::size_t kWriteBytes = std::size_t{1024} * 1024;  // At once; OpenSSL counts in int.
constexpr timeval kPatience{60, 0};  // Clients keep idle connections open for about that long.
constexpr timeval kDrainPatience{0, 200'000};
constexpr std::size_t kDrainBytes = std::size_t{1024} * 1024;

template <typename Value>
void setOption(int socket, int level, int option, const Value& value) {
  setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

void Connection::Freer::operator()(ssl_st* session) const {
  SSL_free(session);
}

Connection::Connection(int socket, ssl_ctx_st* tls) : socket_(socket), tls_(tls != nullptr ? SSL_new(tls) : nullptr) {
  setOption(socket_, IPPROTO_TCP, TCP_NODELAY, 1);
  setOption(socket_, SOL_SOCKET, SO_RCVTIMEO, kPatience);
  setOption(socket_, SOL_SOCKET, SO_SNDTIMEO, kPatience);
  if (tls_ != nullptr) {
    SSL_set_fd(tls_.get(), socket_);
  }
}

Connection::~Connection() {
  ::close(socket_);
}

bool Connection::open() {
  return tls_ == nullptr || SSL_accept(tls_.get()) == 1;
}

bool Connection::readThrough(std::string_view end, std::size_t limit, std::string& out) {
  std::size_t found = 0;
  while ((found = unread_.find(end)) == std::string::npos) {
    if (unread_.size() > limit || !fill()) {
      return false;
    }
  }
  return read(found + end.size(), out);
}

bool Connection::read(std::size_t count, std::string& out) {
  while (unread_.size() < count) {
    if (!fill()) {
      return false;
    }
  }
  out.append(unread_, 0, count);
  unread_.erase(0, count);
  return true;
}

bool Connection::fill() {
  std::array<char, kReadBytes> piece;
  ssize_t count = 0;
  do {
    count = tls_ != nullptr ? SSL_read(tls_.get(), piece.data(), static_cast<int>(piece.size()))
                            : recv(socket_, piece.data(), piece.size(), 0);
  } while (count < 0 && tls_ == nullptr && errno == EINTR);
  unread_.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0;
}

bool Connection::write(std::string_view bytes) {
  while (!bytes.empty() && !aborted_) {
    const std::size_t size = std::min(bytes.size(), kWriteBytes);
    const ssize_t count = tls_ != nullptr ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(size))
                                          : send(socket_, bytes.data(), size, MSG_NOSIGNAL);
    if (count > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (tls_ != nullptr || errno != EINTR) {
      return false;
    }
  }
  return !aborted_;
}

void Connection::close(bool isAllRead) {
  // The peer tells an end from a broken connection by the good-bye of TLS.
  if (tls_ != nullptr && !aborted_) {
    ERR_clear_error();
    SSL_shutdown(tls_.get());
  }
  shutdown(socket_, SHUT_WR);
  if (!isAllRead) {
    setOption(socket_, SOL_SOCKET, SO_RCVTIMEO, kDrainPatience);
    for (unread_.clear(); unread_.size() < kDrainBytes && fill();) {
    }
  }
  shutdown(socket_, SHUT_RDWR);
}

void Connection::abort() {
  aborted_ = true;
  shutdown(socket_, SHUT_RDWR);
}

void Connection::reset() {
  aborted_ = true;
  setOption(socket_, SOL_SOCKET, SO_LINGER, linger{1, 0});  // Closing then sends RST instead of FIN.
  // The number stays taken until the destructor, so that abort() of another thread meets no stranger's socket.
  const int nothing = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  dup3(nothing, socket_, O_CLOEXEC);
  ::close(nothing);
}

bool Connection::isGone() const {
  pollfd entry{socket_, POLLRDHUP, 0};
  return aborted_ || (poll(&entry, 1, 0) > 0 && entry.revents != 0);
}

}  // namespace kesu::loopback
