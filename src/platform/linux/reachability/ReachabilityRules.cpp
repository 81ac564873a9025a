#include "platform/linux/reachability/ReachabilityRules.h"

#include <kesu/platform/ReachabilitySource.h>

#include <algorithm>
#include <array>

#include "foundation/Text.h"
#include "foundation/Url.h"

namespace kesu {
namespace {

constexpr int kLongestDefaultPrefix = 1;  // 0.0.0.0/1 and 128.0.0.0/1 together are a default route.
constexpr std::size_t kLongestHostName = 253;

bool carries(const LinkFacts& link) {
  return link.up && link.running;
}

bool isNearbyLink(const LinkFacts& link) {
  return !link.pointToPoint && !link.mobileRadio;
}

std::uint32_t flagsOver(const RouteFacts& route, const LinkFacts& link) {
  return kFlagReachable | (route.hasGateway ? 0U : kFlagIsDirect) | (link.mobileRadio ? kFlagIsWwan : 0U);
}

bool hasUsableSource(const RouteFacts& route, const IpAddress& target) {
  return route.source && (target.isLinkLocal() || !route.source->isLinkLocal());
}

/// The way over the first row that `fits` and whose link carries traffic.
template <typename Fits>
WayFacts firstWay(const NetworkSnapshot& network, Fits fits) {
  for (const RouteFacts& route : network.routes) {
    const auto link = network.links.find(route.interfaceIndex);
    if (route.kind == RouteKind::unicast && !route.linkDown && link != network.links.end() && carries(link->second) &&
        fits(route, link->second)) {
      return {flagsOver(route, link->second), !route.hasGateway && isNearbyLink(link->second)};
    }
  }
  return {};
}

}  // namespace

WayFacts wayOver(const RouteFacts& route, const std::optional<LinkFacts>& link, const IpAddress& target) {
  if (route.kind == RouteKind::local) {
    return {kFlagReachable | kFlagIsDirect, true};
  }
  const bool usable = route.kind == RouteKind::unicast && !route.linkDown && link && carries(*link);
  if (!usable || !hasUsableSource(route, target)) {
    return {};
  }
  return {flagsOver(route, *link), !route.hasGateway && isNearbyLink(*link)};
}

WayFacts wayToInternet(const NetworkSnapshot& network) {
  return firstWay(network, [](const RouteFacts& route, const LinkFacts& link) {
    return route.prefixLength <= kLongestDefaultPrefix && !link.loopback;
  });
}

WayFacts wayToLocalNetwork(const NetworkSnapshot& network) {
  return firstWay(network, [](const RouteFacts& route, const LinkFacts& link) {
    return route.destination.family == IpAddress::Family::v4 && route.prefixLength > kLongestDefaultPrefix &&
           !route.hasGateway && !link.loopback && isNearbyLink(link);
  });
}

bool isMobileRadioName(std::string_view name) {
  constexpr std::array<std::string_view, 3> kPrefixes = {"wwan", "ppp", "rmnet"};
  return std::any_of(kPrefixes.begin(), kPrefixes.end(), [name](std::string_view p) { return name.starts_with(p); });
}

bool canBeHostName(std::string_view text) {
  const auto impossible = [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; };
  return !text.empty() && text.size() <= kLongestHostName && std::none_of(text.begin(), text.end(), impossible);
}

std::string comparableHostName(std::string_view host) {
  if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
    host = withoutBrackets(host);
  }
  if (host.ends_with('.')) {
    host.remove_suffix(1);
  }
  return asciiLowerCase(host);
}

}  // namespace kesu
