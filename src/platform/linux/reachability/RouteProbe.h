#pragma once

#include <optional>
#include <string>
#include <utility>

#include "platform/linux/reachability/NetlinkSocket.h"
#include "platform/linux/reachability/ReachabilityRules.h"
#include "platform/linux/reachability/RouteFacts.h"

namespace kesu {

/// Finds the routes that the device has right now by asking the kernel's tables: no packet is sent and nothing waits
/// for the network (tens of microseconds per question). Where a sandbox forbids that, UDP sockets that are connected
/// but send nothing show whether there is a route at all. Confined to one thread.
class RouteProbe {
 public:
  /// `sysDirectory`: where the system describes its interfaces.
  explicit RouteProbe(std::string sysDirectory = "/sys") : sysDirectory_(std::move(sysDirectory)) {}

  /// Finds the way to one address; nothing when the kernel cannot be asked.
  std::optional<WayFacts> wayTo(const IpAddress& address);

  /// Finds the way to the internet; nothing when the kernel cannot be asked.
  std::optional<WayFacts> wayToInternet();

  /// Finds the way to a target without host name: 0 = the internet, 169.254.0.0 = the local network, else the host of
  /// that address (host byte order).
  std::optional<WayFacts> wayToTarget(std::uint32_t address);

  /// Reads all interfaces and routes; nothing when the kernel cannot be asked.
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

/// Reads the routes that a message of the kernel describes, one per next hop. Pure; safe on any bytes.
std::vector<RouteFacts> routesOf(const NetlinkMessage& message);

}  // namespace kesu
