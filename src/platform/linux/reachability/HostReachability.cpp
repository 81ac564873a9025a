#include "platform/linux/reachability/HostReachability.h"

#include <kesu/platform/ReachabilitySource.h>

#include <algorithm>
#include <utility>

namespace kesu {
namespace {

// The first callback is promised within 1 s; the rest is for its way through the main loop.
constexpr double kFirstAnnouncementSeconds = 0.8;

// A collector that restarts is back within seconds: records wait a second at most, for one packet per second.
constexpr double kDenseProbeSeconds = 1.0;

// While the host posts, it is worth dense probes. Without traffic for this long it is idle, and nothing is urgent.
constexpr double kTrafficCountsSeconds = 10.0;

// From a failed connection to its record in the store takes a few milliseconds; a busy main loop may need more.
constexpr double kFailureSettlesSeconds = 0.25;

// Re-sending begins with the recovery, so a false one shows in a failure well before this.
constexpr double kRecoveryHoldsSeconds = 10.0;

// Addresses as new as this are right: the host is down, not moved. Asking again would only load the name server.
constexpr double kFreshLookupSeconds = 5.0;

// A host that has moved is found after this time at the latest; most name servers let answers live longer.
constexpr double kLookupWhileDownSeconds = 60.0;

// A lookup that could not be started has no result to wait for: others must finish first.
constexpr double kPostponedLookupSeconds = 1.0;

}  // namespace

HostReachability HostReachability::ofName(double now) {
  return HostReachability({}, true, now);
}

HostReachability HostReachability::ofAddresses(std::vector<IpAddress> addresses, double now) {
  return HostReachability(std::move(addresses), false, now);
}

HostReachability::HostReachability(std::vector<IpAddress> addresses, bool needsLookup, double now)
    : addresses_(std::move(addresses)),
      needsLookup_(needsLookup),
      firstAnnouncementDue_(now + kFirstAnnouncementSeconds) {
  if (needsLookup_) {
    lookupDue_ = now;
  }
}

void HostReachability::lookupFinished(std::uint64_t generation, std::vector<IpAddress> addresses, double now) {
  if (generation <= newestLookup_) {
    return;
  }
  newestLookup_ = generation;  // Lookups overtake each other: an older answer says nothing any more.
  if (addresses.empty()) {
    // A change of the network may have asked for an earlier one already.
    const double retry = now + lookupBackOff_.nextSeconds();
    lookupDue_ = std::min(lookupDue_.value_or(retry), retry);
    return;
  }
  lookupBackOff_.reset();
  if (addresses != addresses_) {  // The host has moved: the back-off of the old addresses does not count.
    addresses_ = std::move(addresses);
    probeDue_ = now;
  }
}

void HostReachability::lookupPostponed(double now) {
  lookupDue_ = now + kPostponedLookupSeconds;
}

void HostReachability::wayFound(std::optional<WayFacts> way) {
  // Before the first lookup "no route" would only mean "no address yet".
  const bool lookupPending = needsLookup_ && addresses_.empty() && newestLookup_ == 0;
  way_ = lookupPending ? std::nullopt : way;
}

void HostReachability::networkChanged(double now) {
  if (needsLookup_) {
    lookupDue_ = now;
    lookupBackOff_.reset();
  }
  proven_ = false;
  probeDue_ = now;
  probeBackOff_.reset();
  falseRecoverySeconds_ = 0.0;
  falseRecoveries_.reset();
}

void HostReachability::trafficFailed(double now) {
  lastFailure_ = now;
  proven_ = false;
  probeBackOff_.reset();
  if (recoversAt_) {  // The attempt may have begun before the recovery: it only delays the announcement.
    recoversAt_ = now + kFailureSettlesSeconds;
  } else if (down_) {
    probeDue_ = std::min(probeDue_, now + probeIntervalSeconds(now));
  } else {
    goDown(now);
  }
}

void HostReachability::goDown(double now) {
  down_ = true;
  if (unconfirmedSince_ && now < *unconfirmedSince_ + kRecoveryHoldsSeconds) {
    falseRecoverySeconds_ = falseRecoveries_.nextSeconds();
  } else {
    falseRecoverySeconds_ = 0.0;
    falseRecoveries_.reset();
  }
  unconfirmedSince_.reset();
  probeDue_ = now + probeIntervalSeconds(now);
  if (needsLookup_ && now >= lastLookupStart_ + kFreshLookupSeconds) {
    lookupDue_ = now;
  }
}

void HostReachability::trafficConnected(double now) {
  falseRecoverySeconds_ = 0.0;
  falseRecoveries_.reset();
  unconfirmedSince_.reset();
  proven_ = needsLookup_ && addresses_.empty();
  if (down_) {
    beginRecovery(now);
  }
}

void HostReachability::probeConnected(double now) {
  if (down_ && !recoversAt_) {
    unconfirmedSince_ = now;
    beginRecovery(now);
  }
}

void HostReachability::beginRecovery(double now) {
  recoversAt_ = recoversAt_.value_or(std::max(now, lastFailure_ + kFailureSettlesSeconds));
}

void HostReachability::tick(double now) {
  if (recoversAt_ && now >= *recoversAt_) {
    recoversAt_.reset();
    down_ = false;
  }
}

std::optional<std::uint64_t> HostReachability::takeLookup(double now) {
  if (!lookupDue_ || now < *lookupDue_) {
    return std::nullopt;
  }
  lookupDue_.reset();
  lastLookupStart_ = now;
  return ++lookupsStarted_;
}

bool HostReachability::mayProbe() const {
  return down_ && !recoversAt_ && !addresses_.empty() && way_ && (way_->flags & kFlagReachable) != 0;
}

double HostReachability::probeIntervalSeconds(double now) {
  const bool dense = (way_ && way_->isNearby) || now < lastFailure_ + kTrafficCountsSeconds;
  return std::max(dense ? kDenseProbeSeconds : probeBackOff_.nextSeconds(), falseRecoverySeconds_);
}

bool HostReachability::takeProbe(double now) {
  if (!mayProbe() || now < probeDue_) {
    return false;
  }
  probeDue_ = now + probeIntervalSeconds(now);
  if (needsLookup_ && now >= lastLookupStart_ + kLookupWhileDownSeconds) {
    lookupDue_ = now;
  }
  return true;
}

bool HostReachability::takeAnnouncement(double now) {
  const std::optional<std::uint32_t> known = flags();
  if (announced_ ? known == announcedFlags_ : !known && now < firstAnnouncementDue_) {
    return false;
  }
  announced_ = true;
  announcedFlags_ = flags();
  return true;
}

std::optional<double> HostReachability::nextDue() const {
  std::optional<double> due = lookupDue_;
  const auto consider = [&due](bool counts, double time) {
    if (counts) {
      due = std::min(due.value_or(time), time);
    }
  };
  consider(!announced_, firstAnnouncementDue_);
  consider(mayProbe(), probeDue_);
  consider(recoversAt_.has_value(), recoversAt_.value_or(0.0));
  return due;
}

bool HostReachability::learnsFromConnections() const {
  return down_ || unconfirmedSince_ || (needsLookup_ && addresses_.empty() && !proven_);
}

std::optional<std::uint32_t> HostReachability::flags() const {
  const bool proven = proven_ && addresses_.empty();
  if (!way_ && !announced_ && !proven) {
    return std::nullopt;
  }
  const std::uint32_t known = proven ? static_cast<std::uint32_t>(kFlagReachable) : way_.value_or(WayFacts{}).flags;
  return down_ ? known & ~static_cast<std::uint32_t>(kFlagReachable) : known;
}

}  // namespace kesu
