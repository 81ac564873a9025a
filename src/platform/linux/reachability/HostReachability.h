#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/linux/reachability/BackOff.h"
#include "platform/linux/reachability/IpAddress.h"
#include "platform/linux/reachability/ReachabilityRules.h"

namespace kesu {

/// What is known about the way to one watched target, and what is to be done next to know it better. Decides only: who
/// owns it looks names up, asks the routes, probes, and reports here. Times are seconds of one clock that never jumps.
/// Confined to one thread.
///
/// A target is reachable when a route leads to one of its addresses and real traffic does not say otherwise. After a
/// failed connection the host is "down" until a probe (a TCP connection that is closed at once) or real traffic
/// connects:
///  - probes start every second while that is cheap or worth it: the host is nearby (this device, or an attached
///  network
///    without a gateway), or real traffic failed during the last 10 s. Otherwise after 1, 2, 4 ... 60 s. So stored
///    records leave about a second after their collector is back, and a host that is gone for good costs one packet a
///    minute. Probes do not wait for each other: each is given a few seconds, the next starts when it is due.
///  - Without a route nothing is probed. A change of the network probes at once.
///  - The way back is announced 0.25 s after the last failure at the earliest: the record that failed is stored by
///  then.
///  - A host whose name cannot be looked up here counts as reachable once real traffic has connected (a proxy looks
///  names
///    up itself), until traffic fails or the network changes.
///  - Where probes connect but traffic goes on failing (as with a certificate that is refused), each such false
///  recovery
///    doubles the waiting time up to 60 s: else every second would re-send all stored records.
class HostReachability {
 public:
  /// Watches a host whose name is to be looked up.
  static HostReachability ofName(double now);

  /// Watches what needs no lookup: a numeric host (its address), or a target without a host name (no address).
  static HostReachability ofAddresses(std::vector<IpAddress> addresses, double now);

  // What happened.

  /// A lookup ended. Only the newest generation so far counts; no addresses = it failed.
  void lookupFinished(std::uint64_t generation, std::vector<IpAddress> addresses, double now);
  /// A lookup that takeLookup() asked for could not be started: it is due again in a second.
  void lookupPostponed(double now);
  /// What the routes say; nothing when it cannot be told.
  void wayFound(std::optional<WayFacts> way);
  /// Interfaces, routes or name servers are not what they were.
  void networkChanged(double now);
  /// Real traffic could not connect.
  void trafficFailed(double now);
  /// Real traffic connected.
  void trafficConnected(double now);
  /// A probe connected.
  void probeConnected(double now);
  /// Time has passed. Call before asking what is to be done.
  void tick(double now);

  // What is to be done.

  /// The generation of a lookup to start now, once.
  std::optional<std::uint64_t> takeLookup(double now);
  /// Whether to start a probe of all addresses now, once.
  bool takeProbe(double now);
  /// Whether to tell the owner of the watch now, once: after the start as soon as something is known (0.8 s at the
  /// latest), then after every change of flags().
  bool takeAnnouncement(double now);
  /// When one of these is due next; nothing while only an event can bring something.
  std::optional<double> nextDue() const;

  // What is known.

  /// The flags; nothing while the way is unknown and no announcement was made.
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
  std::uint64_t newestLookup_ = 0;  // The newest generation that came back.
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
  double falseRecoverySeconds_ = 0.0;  // The shortest probe interval after recoveries that did not hold.

  bool announced_ = false;
  double firstAnnouncementDue_ = 0.0;
  std::optional<std::uint32_t> announcedFlags_;
};

}  // namespace kesu
