#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/reachability/IpAddress.h"

namespace kesu {

/// What the kernel says about one interface.
struct LinkFacts {
  std::string name;
  bool up = false;       ///< Switched on.
  bool running = false;  ///< Has a carrier and can carry traffic.
  bool loopback = false;
  bool pointToPoint = false;
  bool mobileRadio = false;  ///< Reaches the network through a mobile-radio modem.

  bool operator==(const LinkFacts&) const = default;
};

/// The kind of a route.
enum class RouteKind : std::uint8_t {
  unicast,    ///< To another host.
  local,      ///< To this device itself.
  broadcast,  ///< To all hosts of a link.
  none        ///< No route, unreachable, prohibited or discarded.
};

/// A route: the one to an address, or a row of the tables.
struct RouteFacts {
  RouteKind kind = RouteKind::none;
  IpAddress destination;  ///< Of a row: the network's address.
  int prefixLength = 0;   ///< Of a row: 0 for the default route.
  bool hasGateway = false;
  bool linkDown = false;  ///< The kernel marks the route as leading over a link without carrier.
  int interfaceIndex = 0;
  std::optional<IpAddress> source;  ///< The address of this device that would be used.

  bool operator==(const RouteFacts&) const = default;
};

/// The device's interfaces and routes at one instant. While two snapshots are equal, nothing that matters has changed.
struct NetworkSnapshot {
  std::map<int, LinkFacts> links;  ///< By interface index.
  std::vector<RouteFacts> routes;  ///< Of all tables; one entry per next hop.

  bool operator==(const NetworkSnapshot&) const = default;
};

}  // namespace kesu
