#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/linux/reachability/BackOff.h"
#include "platform/linux/reachability/IpAddress.h"
#include "platform/linux/reachability/ReachabilityRules.h"

namespace kesu {

/// Decides whether one watched target is reachable, and what to do next to find out. It does nothing itself: its owner
/// looks names up, asks for routes and probes, and reports the outcome here. Times are seconds on a clock that never
/// jumps. Confined to one thread.
///
/// A target is reachable when a route leads to one of its addresses and real traffic does not say otherwise. After a
/// failed connection the host is "down" until a probe (a TCP connection that is closed at once) or real traffic
/// connects:
///
/// 1. Probes start every second while that is cheap or worth it: the host is nearby (this device, or an attached
/// network
///    without a gateway), or real traffic failed during the last 10 s. Otherwise after 1, 2, 4 ... 60 s. So stored
///    records are sent about a second after their collector is back, and a host that is gone for good costs one packet
///    per minute. Probes overlap: each may take a few seconds, the next starts when it is due.
/// 2. Without a route there are no probes. A change of the network probes at once.
/// 3. The recovery is announced 0.25 s after the last failure at the earliest, so that the failed record has been
/// stored
///    when the stored ones are sent again.
/// 4. A host whose name cannot be looked up here counts as reachable once real traffic has connected (a proxy looks
/// names
///    up itself), until traffic fails or the network changes.
/// 5. Where probes connect but traffic continues to fail (a refused certificate), each such false recovery doubles the
///    waiting time up to 60 s: otherwise all stored records would be sent again every second.
class HostReachability {
 public:
  /// Begins with a host whose name must be looked up.
  static HostReachability ofName(double now);

  /// Begins with a target that needs no lookup: a numeric host (its address), or one without a host name (no address).
  static HostReachability ofAddresses(std::vector<IpAddress> addresses, double now);

  // Reports.

  /// A lookup has finished; no addresses: it failed. An older generation than the newest so far is ignored.
  void lookupFinished(std::uint64_t generation, std::vector<IpAddress> addresses, double now);
  /// A lookup that takeLookup() returned could not be started: it is due again in a second.
  void lookupPostponed(double now);
  /// The routes were asked; nothing: they could not be read.
  void wayFound(std::optional<WayFacts> way);
  /// Interfaces, routes or name servers have changed.
  void networkChanged(double now);
  /// Real traffic could not connect.
  void trafficFailed(double now);
  /// Real traffic connected.
  void trafficConnected(double now);
  /// A probe connected.
  void probeConnected(double now);
  /// Time has passed. Call it before the operations below.
  void tick(double now);

  // What to do. Each take...() returns a due action once and plans the next.

  /// The generation of a lookup to start now.
  std::optional<std::uint64_t> takeLookup(double now);
  /// Whether to start a probe of all addresses now.
  bool takeProbe(double now);
  /// Whether to announce flags() now: after the start as soon as something is known (0.8 s at the latest), then after
  /// every change of them.
  bool takeAnnouncement(double now);
  /// When the next of these is due; nothing while only a report can change anything.
  std::optional<double> nextDue() const;

  // What is known.

  /// The flags; nothing while the route is unknown and no announcement was made.
  std::optional<std::uint32_t> flags() const;
  const std::vector<IpAddress>& addresses() const { return addresses_; }
  /// Whether trafficConnected() would make a difference.
  bool learnsFromConnections() const;

 private:
  HostReachability(std::vector<IpAddress> addresses, bool needsLookup, double now);

  void beginRecovery(double now);
  void goDown(double now);
  double probeIntervalSeconds(double now);
  bool mayProbe() const;

  std::vector<IpAddress> addresses_;
  std::optional<WayFacts> way_;

  bool needsLookup_ = false;
  std::uint64_t lookupsStarted_ = 0;
  std::uint64_t newestLookup_ = 0;  // The newest generation that has finished.
  double lastLookupStart_ = 0.0;
  std::optional<double> lookupDue_;
  BackOff lookupBackOff_;

  bool down_ = false;
  bool proven_ = false;  // Real traffic has connected although no address is known.
  double lastFailure_ = 0.0;
  double probeDue_ = 0.0;
  BackOff probeBackOff_;
  std::optional<double> recoversAt_;        // Connected again; announced then.
  std::optional<double> unconfirmedSince_;  // Recovered by a probe, and no real traffic has connected since.
  BackOff falseRecoveries_;
  double falseRecoverySeconds_ = 0.0;  // The shortest probe interval after recoveries that did not last.

  bool announced_ = false;
  double firstAnnouncementDue_ = 0.0;
  std::optional<std::uint32_t> announcedFlags_;
};

}  // namespace kesu
