#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/linux/base/UniqueFd.h"

namespace kesu::testing {

inline sockaddr_in loopbackAddress(int port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

/// A server on this machine that accepts nobody, but lets everybody connect. Without a port it takes a free one.
class SilentServer {
 public:
  explicit SilentServer(int port = 0) : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int on = 1;
    ::setsockopt(socket_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = loopbackAddress(port);
    socklen_t length = sizeof address;
    EXPECT_EQ(::bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), length), 0);
    EXPECT_EQ(::listen(socket_.get(), 64), 0);
    ::getsockname(socket_.get(), reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }

  int port() const { return port_; }
  int fd() const { return socket_.get(); }

 private:
  UniqueFd socket_;
  int port_ = 0;
};

/// A connection to a port of this machine over which bytes have been sent as they are.
inline UniqueFd sendRaw(int port, std::string_view bytes) {
  UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in address = loopbackAddress(port);
  EXPECT_EQ(::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(::send(socket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
  return socket;
}

/// What comes back for these bytes until the server closes.
inline std::string exchangeRaw(int port, std::string_view bytes) {
  const UniqueFd socket = sendRaw(port, bytes);
  std::string reply;
  char piece[4096];
  for (ssize_t size = 0; (size = ::recv(socket.get(), piece, sizeof piece, 0)) > 0;) {
    reply.append(piece, static_cast<std::size_t>(size));
  }
  return reply;
}

}  // namespace kesu::testing
