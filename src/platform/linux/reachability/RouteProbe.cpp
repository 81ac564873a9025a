#include "platform/linux/reachability/RouteProbe.h"

#include <kesu/platform/ReachabilitySource.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace kesu {
namespace {

constexpr std::uint32_t kLocalNetwork = 0xa9fe0000;  // 169.254.0.0

// An address of the internet that no network uses: it is reserved for documents. Only asked for without sending.
constexpr std::uint32_t kSomewhereOnTheInternet = 0xc6336401;  // 198.51.100.1

RouteKind kindOf(int type) {
  switch (type) {
    case RTN_UNICAST:
    case RTN_ANYCAST:
      return RouteKind::unicast;
    case RTN_LOCAL:
      return RouteKind::local;
    case RTN_BROADCAST:
    case RTN_MULTICAST:
      return RouteKind::broadcast;
    default:
      return RouteKind::none;
  }
}

bool isLinkDown(unsigned flags) {
  return (flags & (RTNH_F_LINKDOWN | RTNH_F_DEAD)) != 0;
}

void readNextHops(ByteSpan hops, const RouteFacts& common, std::vector<RouteFacts>& into) {
  while (const auto hop = readStruct<rtnexthop>(hops)) {
    if (hop->rtnh_len < sizeof *hop || hop->rtnh_len > hops.size()) {
      return;
    }
    RouteFacts route = common;
    route.interfaceIndex = hop->rtnh_ifindex;
    route.linkDown = isLinkDown(hop->rtnh_flags);
    forEachNetlinkAttribute(hops.first(hop->rtnh_len).subspan(sizeof *hop), [&](std::uint16_t type, ByteSpan) {
      route.hasGateway = route.hasGateway || type == RTA_GATEWAY || type == RTA_VIA;
    });
    into.push_back(route);
    hops = afterStruct(hops, hop->rtnh_len);
  }
}

void readRouteAttribute(std::uint16_t type, ByteSpan value, RouteFacts& route) {
  switch (type) {
    case RTA_DST:
      route.destination = IpAddress::fromBytes(value).value_or(route.destination);
      return;
    case RTA_OIF:
      route.interfaceIndex = readStruct<int>(value).value_or(0);
      return;
    case RTA_GATEWAY:
    case RTA_VIA:
      route.hasGateway = true;
      return;
    case RTA_PREFSRC:
      route.source = IpAddress::fromBytes(value);
      return;
    default:
      return;
  }
}

/// Whether the system finds a way for a datagram, asked by a socket that never sends one.
WayFacts wayBySocket(const IpAddress& address) {
  constexpr int kAnyPort = 9;
  const UniqueFd fd(::socket(address.systemFamily(), SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_storage to{};
  const std::uint32_t length = address.toSocketAddress(kAnyPort, to);
  const bool found = ::connect(fd.get(), reinterpret_cast<const sockaddr*>(&to), length) == 0;
  return {found ? static_cast<std::uint32_t>(kFlagReachable) : 0U, false};
}

}  // namespace

std::vector<RouteFacts> routesOf(const NetlinkMessage& message) {
  std::vector<RouteFacts> routes;
  const auto header = readStruct<rtmsg>(message.payload);
  if (message.type != RTM_NEWROUTE || !header) {
    return routes;
  }
  RouteFacts route;
  route.kind = kindOf(header->rtm_type);
  route.destination.family = header->rtm_family == AF_INET6 ? IpAddress::Family::v6 : IpAddress::Family::v4;
  route.prefixLength = header->rtm_dst_len;
  route.linkDown = isLinkDown(header->rtm_flags);
  ByteSpan nextHops;
  forEachNetlinkAttribute(afterStruct(message.payload, sizeof *header), [&](std::uint16_t type, ByteSpan value) {
    readRouteAttribute(type, value, route);
    nextHops = type == RTA_MULTIPATH ? value : nextHops;
  });
  readNextHops(nextHops, route, routes);
  if (routes.empty()) {
    routes.push_back(route);
  }
  return routes;
}

std::optional<WayFacts> RouteProbe::wayTo(const IpAddress& address) {
  const auto route = routeTo(address);
  if (!route) {
    return wayBySocket(address);
  }
  return wayOver(*route, link(route->interfaceIndex), address);
}

std::optional<WayFacts> RouteProbe::wayToInternet() {
  const auto network = snapshot();
  return network ? kesu::wayToInternet(*network) : wayBySocket(IpAddress::fromIpv4(kSomewhereOnTheInternet));
}

std::optional<WayFacts> RouteProbe::wayToTarget(std::uint32_t address) {
  if (address == 0) {
    return wayToInternet();
  }
  if (address != kLocalNetwork) {
    return wayTo(IpAddress::fromIpv4(address));
  }
  const auto network = snapshot();
  return network ? std::optional(wayToLocalNetwork(*network)) : std::nullopt;
}

std::optional<NetworkSnapshot> RouteProbe::snapshot() {
  NetworkSnapshot result;
  // A system without IPv6 has no such table; that is an answer, too.
  if (!readLinks(result) || !readRoutes(AF_INET, result) || !readRoutes(AF_INET6, result)) {
    return std::nullopt;
  }
  return result;
}

std::optional<RouteFacts> RouteProbe::routeTo(const IpAddress& address) {
  rtmsg header{};
  header.rtm_family = static_cast<unsigned char>(address.systemFamily());
  header.rtm_dst_len = static_cast<unsigned char>(address.significantBytes().size() * 8);
  NetlinkRequest request(RTM_GETROUTE, 0);
  request.addStruct(header);
  request.addAttribute(RTA_DST, address.significantBytes());
  if (address.scope != 0) {
    std::array<std::uint8_t, sizeof address.scope> scope{};
    std::memcpy(scope.data(), &address.scope, scope.size());
    request.addAttribute(RTA_OIF, scope);
  }
  RouteFacts found;
  const auto outcome = socket_.ask(std::move(request), [&](const NetlinkMessage& message) {
    const std::vector<RouteFacts> routes = routesOf(message);
    found = routes.empty() ? found : routes.front();
  });
  return outcome == NetlinkSocket::Outcome::unavailable ? std::nullopt : std::optional(found);
}

std::optional<LinkFacts> RouteProbe::link(int index) {
  ifinfomsg header{};
  header.ifi_family = AF_UNSPEC;
  header.ifi_index = index;
  NetlinkRequest request(RTM_GETLINK, 0);
  request.addStruct(header);
  std::optional<LinkFacts> found;
  socket_.ask(std::move(request), [&](const NetlinkMessage& message) {
    if (const auto link = linkOf(message)) {
      found = link->second;
    }
  });
  return found;
}

bool RouteProbe::readLinks(NetworkSnapshot& into) {
  NetlinkRequest request(RTM_GETLINK, NLM_F_DUMP);
  request.addStruct(ifinfomsg{});
  return socket_.ask(std::move(request), [&](const NetlinkMessage& message) {
    if (const auto link = linkOf(message)) {
      into.links.insert(*link);
    }
  }) == NetlinkSocket::Outcome::answered;
}

bool RouteProbe::readRoutes(int family, NetworkSnapshot& into) {
  rtmsg header{};
  header.rtm_family = static_cast<unsigned char>(family);
  NetlinkRequest request(RTM_GETROUTE, NLM_F_DUMP);
  request.addStruct(header);
  return socket_.ask(std::move(request), [&](const NetlinkMessage& message) {
    std::ranges::copy(routesOf(message), std::back_inserter(into.routes));
  }) != NetlinkSocket::Outcome::unavailable;
}

std::optional<std::pair<int, LinkFacts>> RouteProbe::linkOf(const NetlinkMessage& message) const {
  const auto header = readStruct<ifinfomsg>(message.payload);
  if (message.type != RTM_NEWLINK || !header) {
    return std::nullopt;
  }
  LinkFacts link;
  link.up = (header->ifi_flags & IFF_UP) != 0;
  link.running = (header->ifi_flags & IFF_RUNNING) != 0;
  link.loopback = (header->ifi_flags & IFF_LOOPBACK) != 0;
  link.pointToPoint = (header->ifi_flags & IFF_POINTOPOINT) != 0;
  forEachNetlinkAttribute(afterStruct(message.payload, sizeof *header), [&](std::uint16_t type, ByteSpan value) {
    if (type == IFLA_IFNAME) {
      link.name.assign(value.begin(), std::find(value.begin(), value.end(), 0));
    }
  });
  link.mobileRadio = isMobileRadio(link.name);
  return std::pair(header->ifi_index, link);
}

bool RouteProbe::isMobileRadio(const std::string& name) const {
  if (isMobileRadioName(name)) {
    return true;
  }
  std::ifstream description(sysDirectory_ + "/class/net/" + name + "/uevent");
  std::string line;
  while (std::getline(description, line)) {
    if (line == "DEVTYPE=wwan") {
      return true;
    }
  }
  return false;
}

}  // namespace kesu
