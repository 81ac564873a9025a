#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

struct sockaddr;
struct sockaddr_storage;

namespace kesu {

/// An IPv4 or IPv6 address as route tables and sockets know it. A plain value.
struct IpAddress {
  enum class Family : std::uint8_t {
    v4,  ///< The first 4 bytes count.
    v6   ///< All 16 bytes count.
  };

  Family family = Family::v4;
  std::array<std::uint8_t, 16> bytes{};  ///< Network order; unused bytes are 0.
  std::uint32_t scope = 0;               ///< Interface index of a link-local IPv6 address; 0 = none.

  /// Parses a dotted or colon form ("10.0.0.1", "::1"; no brackets, no port); nothing for any other text, such as
  /// names.
  static std::optional<IpAddress> fromText(const std::string& text);

  /// Converts an IPv4 address in host byte order.
  static IpAddress fromIpv4(std::uint32_t address);

  /// Converts 4 or 16 bytes in network order; nothing for any other length. IPv4 mapped into IPv6 becomes IPv4.
  static std::optional<IpAddress> fromBytes(std::span<const std::uint8_t> bytes);

  /// Converts a socket address of `length` bytes; nothing for other families and for too few bytes.
  static std::optional<IpAddress> fromSocketAddress(const sockaddr* address, std::size_t length);

  /// Fills `out` for connect() and returns its length in bytes.
  std::uint32_t toSocketAddress(int port, sockaddr_storage& out) const;

  /// AF_INET or AF_INET6.
  int systemFamily() const;

  /// The bytes that the family uses.
  std::span<const std::uint8_t> significantBytes() const;

  /// Whether the address is valid on its own link only (169.254.0.0/16, fe80::/10).
  bool isLinkLocal() const;

  bool operator==(const IpAddress&) const = default;
};

}  // namespace kesu
