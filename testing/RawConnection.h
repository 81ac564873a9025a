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

/// A connection to a port of this machine over which bytes have been sent as they are.
inline UniqueFd sendRaw(int port, std::string_view bytes) {
  UniqueFd socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(::connect(socket.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
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
