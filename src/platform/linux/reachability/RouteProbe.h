#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/linux/reachability/NetlinkSocket.h"
#include "platform/linux/reachability/ReachabilityRules.h"
#include "platform/linux/reachability/RouteFacts.h"

namespace kesu {

/// Finds out which ways the device has right now, by asking the kernel's tables: no packet is sent and nothing waits
/// for the network (tens of microseconds a question). Where a sandbox forbids to ask, sockets that are connected but
/// send nothing tell whether there is a way at all. Confined to one thread.
class RouteProbe {
 public:
  /// `sysDirectory` is where the system describes its interfaces.
  explicit RouteProbe(std::string sysDirectory = "/sys") : sysDirectory_(std::move(sysDirectory)) {}

  /// The way to one address; nothing when it cannot be told.
  std::optional<WayFacts> wayTo(const IpAddress& address);

  /// The way to the internet; nothing when it cannot be told.
  std::optional<WayFacts> wayToInternet();

  /// The way to what a target without host name means: 0 = the internet, 169.254.0.0 = the local network, else the host
  /// of that address (host byte order).
  std::optional<WayFacts> wayToTarget(std::uint32_t address);

  /// All interfaces and routes; nothing when they cannot be told.
  std::optional<NetworkSnapshot> snapshot();

 private:
  std::optional<RouteFacts> routeTo(const IpAddress& address);
  std::optional<LinkFacts> link(int index);
  bool readLinks(NetworkSnapshot& into);
  bool readRoutes(int family, NetworkSnapshot& into);
  std::optional<std::pair<int, LinkFacts>> linkOf(const NetlinkMessage& message) const;
  bool isMobileRadio(const std::string& name) const;

  std::string sysDirectory_;
  NetlinkSocket socket_;
};

/// The routes that a message of the kernel describes, one a next hop. Pure; safe on any bytes.
std::vector<RouteFacts> routesOf(const NetlinkMessage& message);

}  // namespace kesu
