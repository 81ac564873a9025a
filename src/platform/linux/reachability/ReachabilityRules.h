#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/reachability/RouteFacts.h"

namespace kesu {

/// The way to a target over the routes.
struct WayFacts {
  std::uint32_t flags = 0;  ///< Of ReachabilityFlags; 0 = no way.
  bool isNearby = false;    ///< On this device or on a directly attached network: frequent probes cost nothing.

  bool operator==(const WayFacts&) const = default;
};

/// Judges the route that the kernel found to `target`: it is a way only when its link is up and running and there is a
/// source address that the target could answer. `link` is the route's interface, if known. Pure.
WayFacts wayOver(const RouteFacts& route, const std::optional<LinkFacts>& link, const IpAddress& target);

/// Finds the way to "the internet": a default route of IPv4 or IPv6 over a running link. Two routes for one half of the
/// address space each, as VPNs add them, count as default routes. Pure.
WayFacts wayToInternet(const NetworkSnapshot& network);

/// Finds the way to a directly attached network (the target 169.254.0.0): a running link, neither loopback nor
/// mobile radio nor point-to-point, over which IPv4 hosts are reached without a gateway. Pure.
WayFacts wayToLocalNetwork(const NetworkSnapshot& network);

/// Whether an interface name is one of a mobile-radio modem: "wwan", "ppp" or "rmnet" and what follows.
bool isMobileRadioName(std::string_view name);

/// Whether a text can be a host name: 1 to 253 bytes without blanks and control characters. Bytes above 127 are
/// allowed: the resolver decides about such names.
bool canBeHostName(std::string_view text);

/// Converts a host name to the form in which two are compared: lower-case ASCII, without the brackets of an IPv6
/// address and without the dot of an absolute name.
std::string comparableHostName(std::string_view host);

}  // namespace kesu
