#pragma once

#include <poll.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/reachability/Debouncer.h"
#include "platform/linux/reachability/HostReachability.h"
#include "platform/linux/reachability/InternetFlags.h"
#include "platform/linux/reachability/NameLookups.h"
#include "platform/linux/reachability/NetworkEvents.h"
#include "platform/linux/reachability/ReachabilityMailbox.h"
#include "platform/linux/reachability/RouteProbe.h"
#include "platform/linux/reachability/TcpProber.h"

namespace kesu {

/// Where the system is read; tests replace parts.
struct ReachabilitySystem {
  std::string resolverFile = "/etc/resolv.conf";
  std::string sysDirectory = "/sys";
  NameLookups::Resolver resolver = NameLookups::systemResolver;
};

/// The work of the watcher thread: notices changes, looks names up, asks for routes, probes, and announces the flags of
/// each watch. Sleeps in poll() until one of these has something, without a timer while all is well. Made, used and
/// destroyed on that thread.
class ReachabilityMonitor {
 public:
  /// Announces to the watches of `mailbox`; publishes the flags of the internet to `internet`. Both must outlive the
  /// monitor.
  ReachabilityMonitor(ReachabilityMailbox& mailbox, InternetFlags& internet, std::shared_ptr<WakeEvent> wake,
                      const ReachabilitySystem& system);

  /// Runs until the mailbox is stopped.
  void run();

 private:
  struct Host {
    std::shared_ptr<ReachabilityWatch> watch;
    HostReachability state;
  };

  static HostReachability beginHost(const ReachabilityTarget& target, double now);

  bool takeMail(double now);
  void takeItem(const ReachabilityMailbox::Item& item, double now);
  void takeEvents(double now);
  void takeLookups(double now);
  void takeProbes(double now);
  void lookAtNetwork(double now);
  void findWay(Host& host);
  std::optional<WayFacts> wayTo(const Host& host);
  void act(Host& host, double now);
  void announce(Host& host, double now);
  void sleep();
  int timeoutMilliseconds(double now) const;

  ReachabilityMailbox& mailbox_;
  InternetFlags& internet_;
  std::shared_ptr<WakeEvent> wake_;
  NetworkEvents events_;
  RouteProbe routes_;
  NameLookups lookups_;
  TcpProber prober_;
  Debouncer debouncer_;
  bool resolverChanged_ = false;
  std::optional<NetworkSnapshot> network_;
  std::map<std::uint64_t, Host> hosts_;  // By the watch's number.
  std::vector<pollfd> polled_;
};

}  // namespace kesu
