#include "platform/linux/reachability/IpAddress.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstring>

namespace kesu {
namespace {

constexpr std::array<std::uint8_t, 12> kMappedIpv4Prefix = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xff, 0xff};

template <typename SocketAddress>
std::uint32_t store(const SocketAddress& address, sockaddr_storage& out) {
  std::memset(&out, 0, sizeof out);
  std::memcpy(&out, &address, sizeof address);
  return static_cast<std::uint32_t>(sizeof address);
}

}  // namespace

std::optional<IpAddress> IpAddress::fromText(const std::string& text) {
  std::array<std::uint8_t, 16> buffer{};
  if (::inet_pton(AF_INET, text.c_str(), buffer.data()) == 1) {
    return fromBytes(std::span(buffer).first(4));
  }
  if (::inet_pton(AF_INET6, text.c_str(), buffer.data()) == 1) {
    return fromBytes(buffer);
  }
  return std::nullopt;
}

IpAddress IpAddress::fromIpv4(std::uint32_t address) {
  IpAddress result;
  for (std::size_t i = 0; i < 4; ++i) {
    result.bytes[i] = static_cast<std::uint8_t>(address >> (24 - 8 * i));
  }
  return result;
}

std::optional<IpAddress> IpAddress::fromBytes(std::span<const std::uint8_t> bytes) {
  if (bytes.size() != 4 && bytes.size() != 16) {
    return std::nullopt;
  }
  if (bytes.size() == 16 && std::equal(kMappedIpv4Prefix.begin(), kMappedIpv4Prefix.end(), bytes.begin())) {
    bytes = bytes.subspan(12);
  }
  IpAddress result;
  result.family = bytes.size() == 4 ? Family::v4 : Family::v6;
  std::copy(bytes.begin(), bytes.end(), result.bytes.begin());
  return result;
}

std::optional<IpAddress> IpAddress::fromSocketAddress(const sockaddr* address, std::size_t length) {
  if (length >= sizeof(sockaddr_in) && address->sa_family == AF_INET) {
    sockaddr_in in{};
    std::memcpy(&in, address, sizeof in);
    return fromIpv4(ntohl(in.sin_addr.s_addr));
  }
  if (length >= sizeof(sockaddr_in6) && address->sa_family == AF_INET6) {
    sockaddr_in6 in{};
    std::memcpy(&in, address, sizeof in);
    std::optional<IpAddress> result = fromBytes(std::span(in.sin6_addr.s6_addr));
    result->scope = result->isLinkLocal() ? in.sin6_scope_id : 0;
    return result;
  }
  return std::nullopt;
}

std::uint32_t IpAddress::toSocketAddress(int port, sockaddr_storage& out) const {
  if (family == Family::v4) {
    sockaddr_in in{};
    in.sin_family = AF_INET;
    in.sin_port = htons(static_cast<std::uint16_t>(port));
    std::memcpy(&in.sin_addr, bytes.data(), 4);
    return store(in, out);
  }
  sockaddr_in6 in{};
  in.sin6_family = AF_INET6;
  in.sin6_port = htons(static_cast<std::uint16_t>(port));
  std::memcpy(&in.sin6_addr, bytes.data(), 16);
  in.sin6_scope_id = scope;
  return store(in, out);
}

int IpAddress::systemFamily() const {
  return family == Family::v4 ? AF_INET : AF_INET6;
}

std::span<const std::uint8_t> IpAddress::significantBytes() const {
  return std::span(bytes).first(family == Family::v4 ? 4 : 16);
}

bool IpAddress::isLinkLocal() const {
  return family == Family::v4 ? bytes[0] == 169 && bytes[1] == 254 : bytes[0] == 0xfe && (bytes[1] & 0xc0) == 0x80;
}

}  // namespace kesu
