#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/reachability/RouteFacts.h"

namespace kesu {

/// What the routes say about the way to a target.
struct WayFacts {
  std::uint32_t flags = 0;  ///< Of ReachabilityFlags; 0 = no way.
  bool isNearby = false;    ///< On this device or on a directly attached network: asking it often costs nothing.

  bool operator==(const WayFacts&) const = default;
};

/// The way to `target` over the route that the kernel found for it. A way counts only when its link is up and running
/// and there is a source address that the target could answer. `link` is the route's interface, if known. Pure.
WayFacts wayOver(const RouteFacts& route, const std::optional<LinkFacts>& link, const IpAddress& target);

/// The way to "the internet": a default route of IPv4 or IPv6 over a running link. Two routes for one half of the
/// address space each, as VPNs lay them, count as default routes. Pure.
WayFacts wayToInternet(const NetworkSnapshot& network);

/// The way to a directly attached network (the meaning of the target 169.254.0.0): a running link, neither loopback nor
/// mobile radio nor point-to-point, over which IPv4 hosts are reached without a gateway. Pure.
WayFacts wayToLocalNetwork(const NetworkSnapshot& network);

/// Whether an interface name is one of a mobile-radio modem: "wwan", "ppp" or "rmnet" and what follows.
bool isMobileRadioName(std::string_view name);

/// Whether a text can be a host name at all: 1 to 253 bytes without blanks and control characters. Bytes above 127
/// pass: whether such a name resolves is the resolver's business.
bool canBeHostName(std::string_view text);

/// A host name in the form in which two are compared: lower-case ASCII, without the brackets of a numeric IPv6 address
/// and without the dot of an absolute name.
std::string comparableHostName(std::string_view host);

}  // namespace kesu
