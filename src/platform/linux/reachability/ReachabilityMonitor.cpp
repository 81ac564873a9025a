#include "platform/linux/reachability/ReachabilityMonitor.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "platform/ServiceLog.h"

namespace kesu {
namespace {

// A cable or a wireless network that comes up makes a burst of events within some 10 ms. A change must still be seen
// well before the next record fails.
constexpr double kDebounceSeconds = 0.05;

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace

ReachabilityMonitor::ReachabilityMonitor(ReachabilityMailbox& mailbox, InternetFlags& internet,
                                         std::shared_ptr<WakeEvent> wake, const ReachabilitySystem& system)
    : mailbox_(mailbox),
      internet_(internet),
      wake_(std::move(wake)),
      events_(system.resolverFile),
      routes_(system.sysDirectory),
      lookups_(wake_, system.resolver),
      debouncer_(kDebounceSeconds) {
  if (!events_.hearsNetwork()) {
    serviceLog(2, "changes of the network cannot be noticed: reachability is learnt from connections only");
  }
}

void ReachabilityMonitor::run() {
  lookAtNetwork(steadySeconds());
  while (true) {
    const double now = steadySeconds();
    wake_->clear();  // Before anything is read: a signal from now on wakes the next poll().
    // News first, actions last: what one reports decides what another does, and each host is announced once per turn.
    if (!takeMail(now)) {
      return;
    }
    takeEvents(now);
    takeLookups(now);
    takeProbes(now);
    for (auto& [id, host] : hosts_) {
      act(host, now);
    }
    sleep();
  }
}

HostReachability ReachabilityMonitor::beginHost(const ReachabilityTarget& target, double now) {
  if (target.hostName.empty()) {
    return HostReachability::ofAddresses({}, now);
  }
  const auto address = IpAddress::fromText(comparableHostName(target.hostName));
  return address ? HostReachability::ofAddresses({*address}, now) : HostReachability::ofName(now);
}

bool ReachabilityMonitor::takeMail(double now) {
  const auto items = mailbox_.take();
  if (!items) {
    return false;
  }
  std::erase_if(hosts_, [&](const auto& entry) {
    const bool gone = std::ranges::none_of(*items, [&](const auto& item) { return item.watch->id == entry.first; });
    if (gone) {
      prober_.cancel(entry.first);
    }
    return gone;
  });
  for (const ReachabilityMailbox::Item& item : *items) {
    takeItem(item, now);
  }
  return true;
}

void ReachabilityMonitor::takeItem(const ReachabilityMailbox::Item& item, double now) {
  auto found = hosts_.find(item.watch->id);
  if (found == hosts_.end()) {
    found = hosts_.emplace(item.watch->id, Host{item.watch, beginHost(item.watch->target, now)}).first;
    findWay(found->second);
  }
  // A record that failed needs a recovery to be announced, even if another connection has succeeded meanwhile: so the
  // failure is announced by itself, before the success.
  if (item.failed) {
    found->second.state.trafficFailed(now);
    announce(found->second, now);
  }
  if (item.connected) {
    found->second.state.trafficConnected(now);
  }
}

void ReachabilityMonitor::takeEvents(double now) {
  const NetworkEvents::Heard heard = events_.take();
  resolverChanged_ = resolverChanged_ || heard.resolver;
  if (heard.network || heard.resolver) {
    debouncer_.note(now);
  }
  if (debouncer_.take(now)) {
    lookAtNetwork(now);
  }
}

void ReachabilityMonitor::lookAtNetwork(double now) {
  std::optional<NetworkSnapshot> network = routes_.snapshot();
  // Routers repeat themselves every few seconds, and wireless interfaces report every scan: most events change nothing.
  const bool changed = std::exchange(resolverChanged_, false) || !network || network != network_;
  if (!changed) {
    return;
  }
  network_ = std::move(network);
  if (network_ && events_.hearsNetwork()) {
    internet_.publish(wayToInternet(*network_).flags);
  }
  for (auto& [id, host] : hosts_) {
    host.state.networkChanged(now);
    findWay(host);
  }
}

void ReachabilityMonitor::takeLookups(double now) {
  for (NameLookups::Result& result : lookups_.take()) {
    if (const auto found = hosts_.find(result.watchId); found != hosts_.end()) {
      found->second.state.lookupFinished(result.generation, std::move(result.addresses), now);
      findWay(found->second);
    }
  }
}

void ReachabilityMonitor::takeProbes(double now) {
  for (const std::uint64_t watchId : prober_.collect(now)) {
    if (const auto found = hosts_.find(watchId); found != hosts_.end()) {
      found->second.state.probeConnected(now);
    }
  }
}

void ReachabilityMonitor::findWay(Host& host) {
  host.state.wayFound(wayTo(host));
}

std::optional<WayFacts> ReachabilityMonitor::wayTo(const Host& host) {
  if (host.watch->target.hostName.empty()) {
    return routes_.wayToTarget(host.watch->target.address);
  }
  for (const IpAddress& address : host.state.addresses()) {
    if (const auto way = routes_.wayTo(address); way && way->flags != 0) {
      return way;
    }
  }
  return WayFacts{};
}

void ReachabilityMonitor::act(Host& host, double now) {
  const ReachabilityTarget& target = host.watch->target;
  host.state.tick(now);
  if (const auto generation = host.state.takeLookup(now)) {
    if (!lookups_.start(host.watch->id, *generation, comparableHostName(target.hostName))) {
      host.state.lookupPostponed(now);
    }
  }
  if (host.state.takeProbe(now)) {
    prober_.start(host.watch->id, host.state.addresses(), target.port, now);
  }
  announce(host, now);
}

void ReachabilityMonitor::announce(Host& host, double now) {
  mailbox_.setWantsSuccesses(host.watch->id, host.state.learnsFromConnections());
  const bool isDue = host.state.takeAnnouncement(now);
  host.watch->setFlags(host.state.flags());  // Before the callback, which reads them.
  if (isDue) {
    host.watch->announce();
  }
}

void ReachabilityMonitor::sleep() {
  polled_.clear();
  polled_.push_back({wake_->fd(), POLLIN, 0});
  events_.appendTo(polled_);
  prober_.appendTo(polled_);
  ::poll(polled_.data(), polled_.size(), timeoutMilliseconds(steadySeconds()));
}

int ReachabilityMonitor::timeoutMilliseconds(double now) const {
  constexpr double kLongestSeconds = 3600.0;  // Keeps the milliseconds within the range of an int.
  std::optional<double> due = debouncer_.due();
  const auto consider = [&due](double time) { due = std::min(due.value_or(time), time); };
  if (!prober_.isIdle()) {
    consider(prober_.nextDue());
  }
  for (const auto& [id, host] : hosts_) {
    if (const auto next = host.state.nextDue()) {
      consider(*next);
    }
  }
  const double seconds = std::clamp(due.value_or(now) - now, 0.0, kLongestSeconds);
  return due ? static_cast<int>(std::ceil(seconds * 1000.0)) : -1;
}

}  // namespace kesu
