#include "platform/linux/reachability/ReachabilityRules.h"

#include <gtest/gtest.h>
#include <kesu/platform/ReachabilitySource.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <random>
#include <string>
#include <vector>

#include "platform/linux/reachability/NetlinkMessages.h"
#include "platform/linux/reachability/RouteProbe.h"

namespace kesu {
namespace {

IpAddress address(const std::string& text) {
  const auto result = IpAddress::fromText(text);
  EXPECT_TRUE(result) << text;
  return result.value_or(IpAddress{});
}

LinkFacts link(bool up, bool running) {
  LinkFacts result;
  result.name = "eth0";
  result.up = up;
  result.running = running;
  return result;
}

RouteFacts route(RouteKind kind, bool hasGateway, const std::string& source) {
  RouteFacts result;
  result.kind = kind;
  result.hasGateway = hasGateway;
  result.interfaceIndex = 2;
  result.source = source.empty() ? std::nullopt : std::optional(address(source));
  return result;
}

RouteFacts row(const std::string& network, int prefixLength, bool hasGateway) {
  RouteFacts result = route(RouteKind::unicast, hasGateway, "");
  result.destination = address(network);
  result.prefixLength = prefixLength;
  return result;
}

struct WayCase {
  const char* what;
  RouteFacts route;
  std::optional<LinkFacts> link;
  const char* target;
  std::uint32_t flags;
  bool isNearby;
};

TEST(ReachabilityRulesTest, AWayNeedsARouteARunningLinkAndASourceThatCanBeAnswered) {
  const LinkFacts good = link(true, true);
  LinkFacts radio = good;
  radio.mobileRadio = true;
  LinkFacts tunnel = good;
  tunnel.pointToPoint = true;
  RouteFacts linkDown = route(RouteKind::unicast, true, "10.0.0.2");
  linkDown.linkDown = true;
  const RouteFacts gateway = route(RouteKind::unicast, true, "10.0.0.2");
  const RouteFacts direct = route(RouteKind::unicast, false, "10.0.0.2");
  const std::vector<WayCase> cases = {
      {"over a gateway", gateway, good, "198.51.100.7", kFlagReachable, false},
      {"without gateway", direct, good, "10.0.0.9", kFlagReachable | kFlagIsDirect, true},
      {"this device", route(RouteKind::local, false, ""), std::nullopt, "127.0.0.1", kFlagReachable | kFlagIsDirect,
       true},
      {"mobile radio", gateway, radio, "198.51.100.7", kFlagReachable | kFlagIsWwan, false},
      {"mobile radio, direct", direct, radio, "10.0.0.9", kFlagReachable | kFlagIsDirect | kFlagIsWwan, false},
      {"tunnel", direct, tunnel, "10.0.0.9", kFlagReachable | kFlagIsDirect, false},
      {"no route", route(RouteKind::none, true, "10.0.0.2"), good, "198.51.100.7", 0, false},
      {"broadcast", route(RouteKind::broadcast, false, "10.0.0.2"), good, "10.0.0.255", 0, false},
      {"link switched off", gateway, link(false, false), "198.51.100.7", 0, false},
      {"no carrier", gateway, link(true, false), "198.51.100.7", 0, false},
      {"route marked linkdown", linkDown, good, "198.51.100.7", 0, false},
      {"link unknown", gateway, std::nullopt, "198.51.100.7", 0, false},
      {"no source", route(RouteKind::unicast, true, ""), good, "198.51.100.7", 0, false},
      {"self-assigned source", route(RouteKind::unicast, true, "169.254.3.4"), good, "198.51.100.7", 0, false},
      {"self-assigned to its like", route(RouteKind::unicast, false, "169.254.3.4"), good, "169.254.9.9",
       kFlagReachable | kFlagIsDirect, true},
      {"IPv6, link-local source", route(RouteKind::unicast, true, "fe80::2"), good, "2001:db8::7", 0, false},
      {"IPv6", route(RouteKind::unicast, true, "2001:db8::2"), good, "2001:db8:1::7", kFlagReachable, false},
  };
  for (const WayCase& c : cases) {
    EXPECT_EQ(wayOver(c.route, c.link, address(c.target)), (WayFacts{c.flags, c.isNearby})) << c.what;
  }
}

TEST(ReachabilityRulesTest, TheInternetIsADefaultRouteAndTheLocalNetworkOneWithoutGateway) {
  constexpr std::uint32_t kDirectlyAttached = kFlagReachable | kFlagIsDirect;
  LinkFacts loopback = link(true, true);
  loopback.loopback = true;
  LinkFacts tunnel = link(true, true);
  tunnel.pointToPoint = true;
  RouteFacts forbidden = row("0.0.0.0", 0, true);
  forbidden.kind = RouteKind::none;
  const struct {
    const char* what;
    std::vector<RouteFacts> routes;
    LinkFacts link;
    std::uint32_t internet;
    std::uint32_t local;
  } cases[] = {
      {"nothing", {}, link(true, true), 0, 0},
      {"home network",
       {row("0.0.0.0", 0, true), row("10.0.0.0", 24, false)},
       link(true, true),
       kFlagReachable,
       kDirectlyAttached},
      {"home network, cable out", {row("0.0.0.0", 0, true), row("10.0.0.0", 24, false)}, link(true, false), 0, 0},
      {"no router", {row("169.254.0.0", 16, false)}, link(true, true), 0, kDirectlyAttached},
      {"forbidden default", {forbidden}, link(true, true), 0, 0},
      {"IPv6 only", {row("::", 0, true), row("fe80::", 64, false)}, link(true, true), kFlagReachable, 0},
      {"halves", {row("0.0.0.0", 1, true), row("128.0.0.0", 1, true)}, link(true, true), kFlagReachable, 0},
      {"loopback only", {row("0.0.0.0", 0, false), row("127.0.0.0", 8, false)}, loopback, 0, 0},
      {"tunnel", {row("0.0.0.0", 0, false), row("10.8.0.1", 32, false)}, tunnel, kDirectlyAttached, 0},
  };
  for (const auto& c : cases) {
    const NetworkSnapshot network{{{2, c.link}}, c.routes};
    EXPECT_EQ(wayToInternet(network).flags, c.internet) << c.what;
    EXPECT_EQ(wayToLocalNetwork(network).flags, c.local) << c.what;
  }
}

TEST(ReachabilityRulesTest, KnowsMobileRadioInterfacesByName) {
  for (const char* name : {"wwan0", "ppp0", "rmnet_data0", "rmnet0"}) {
    EXPECT_TRUE(isMobileRadioName(name)) << name;
  }
  for (const char* name : {"", "eth0", "wlan0", "wwp0s20u4", "xwwan0", "pp", "lo", "WWAN0"}) {
    EXPECT_FALSE(isMobileRadioName(name)) << name;
  }
}

TEST(ReachabilityRulesTest, TellsWhatCanBeAHostName) {
  for (const std::string& name :
       {std::string("a"), std::string("collector.kesu.example"), std::string("192.0.2.1"), std::string("::1"),
        std::string("b\xc3\xbc"
                    "cher.example"),
        std::string(253, 'a')}) {
    EXPECT_TRUE(canBeHostName(name)) << name;
  }
  for (const std::string& name :
       {std::string(), std::string(" "), std::string("a b"), std::string("a\tb"), std::string("a\nb"),
        std::string("a\0b", 3), std::string("\x7f"), std::string(254, 'a')}) {
    EXPECT_FALSE(canBeHostName(name)) << name;
  }
}

TEST(ReachabilityRulesTest, ComparesHostNamesWithoutCaseBracketsAndFinalDot) {
  EXPECT_EQ(comparableHostName("Collector.KESU.example."), "collector.kesu.example");
  EXPECT_EQ(comparableHostName("[2001:DB8::1]"), "2001:db8::1");
  EXPECT_EQ(comparableHostName("["), "[");
  EXPECT_EQ(comparableHostName("."), "");
}

TEST(IpAddressTest, ReadsNumericFormsOnly) {
  EXPECT_EQ(address("::ffff:10.0.0.1"), IpAddress::fromIpv4(0x0a000001));
  EXPECT_EQ(address("10.0.0.1").systemFamily(), AF_INET);
  EXPECT_EQ(address("::1").systemFamily(), AF_INET6);
  for (const char* text : {"", "localhost", "10.0.0", "10.0.0.1:80", "[::1]", "1.2.3.4.5", "::g"}) {
    EXPECT_FALSE(IpAddress::fromText(text)) << text;
  }
}

/// The message of a default route with two next hops, the second without carrier.
std::vector<std::uint8_t> multipathMessage() {
  rtmsg header{};
  header.rtm_family = AF_INET;
  header.rtm_type = RTN_UNICAST;
  NetlinkRequest hops(0, 0);
  for (const int index : {2, 3}) {
    rtnexthop hop{};
    hop.rtnh_len = sizeof hop + 8;
    hop.rtnh_ifindex = index;
    hop.rtnh_flags = index == 3 ? RTNH_F_LINKDOWN : 0;
    hops.addStruct(hop);
    hops.addAttribute(RTA_GATEWAY, address("10.0.0.1").significantBytes());
  }
  NetlinkRequest message(RTM_NEWROUTE, 0);
  message.addStruct(header);
  message.addAttribute(RTA_MULTIPATH, hops.finish(0).subspan(sizeof(nlmsghdr)));
  const ByteSpan bytes = message.finish(7);
  return {bytes.begin(), bytes.end()};
}

std::vector<RouteFacts> routesIn(ByteSpan datagram) {
  std::vector<RouteFacts> routes;
  forEachNetlinkMessage(datagram, [&](const NetlinkMessage& message) {
    const auto found = routesOf(message);
    routes.insert(routes.end(), found.begin(), found.end());
  });
  return routes;
}

TEST(NetlinkMessagesTest, ReadsEveryNextHopOfARoute) {
  const std::vector<RouteFacts> routes = routesIn(multipathMessage());
  ASSERT_EQ(routes.size(), 2U);
  EXPECT_TRUE(routes[0].hasGateway && routes[1].hasGateway);
  EXPECT_EQ(routes[0].interfaceIndex, 2);
  EXPECT_FALSE(routes[0].linkDown);
  EXPECT_EQ(routes[1].interfaceIndex, 3);
  EXPECT_TRUE(routes[1].linkDown);
}

TEST(NetlinkMessagesTest, SurvivesCutAndDamagedMessages) {
  const std::vector<std::uint8_t> whole = multipathMessage();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_TRUE(routesIn(ByteSpan(whole).first(length)).empty());
  }
  std::minstd_rand random(1);
  for (int round = 0; round < 20000; ++round) {
    std::vector<std::uint8_t> damaged = whole;
    for (int i = 0; i < 3; ++i) {
      damaged[random() % damaged.size()] = static_cast<std::uint8_t>(random());
    }
    EXPECT_LE(routesIn(damaged).size(), whole.size());
  }
}

}  // namespace
}  // namespace kesu
