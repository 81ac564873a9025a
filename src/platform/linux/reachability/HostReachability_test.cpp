#include "platform/linux/reachability/HostReachability.h"

#include <gtest/gtest.h>
#include <kesu/platform/ReachabilitySource.h>

#include <vector>

#include "platform/linux/reachability/BackOff.h"
#include "platform/linux/reachability/Debouncer.h"

namespace kesu {
namespace {

constexpr WayFacts kNearby{kFlagReachable | kFlagIsDirect, true};
constexpr WayFacts kFarAway{kFlagReachable, false};
constexpr WayFacts kNoWay{};

const std::vector<IpAddress> kSomeAddress = {IpAddress::fromIpv4(0xc6336407)};

/// Drives a host through time as the monitor does.
class HostReachabilityTest : public ::testing::Test {
 protected:
  HostReachability reachableHost(WayFacts way) {
    HostReachability host = HostReachability::ofAddresses(kSomeAddress, 0.0);
    host.wayFound(way);
    EXPECT_TRUE(host.takeAnnouncement(0.0));
    return host;
  }

  /// Lets time pass and returns the instants at which probes were asked for.
  static std::vector<double> probesUntil(HostReachability& host, double end) {
    std::vector<double> probes;
    for (auto due = host.nextDue(); due && *due <= end; due = host.nextDue()) {
      host.tick(*due);
      if (host.takeProbe(*due)) {
        probes.push_back(*due);
      }
      host.takeLookup(*due);
      host.takeAnnouncement(*due);
    }
    return probes;
  }
};

TEST(BackOffTest, DoublesUpToAMinuteAndBeginsAgain) {
  BackOff backOff;
  for (const double expected : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 60.0, 60.0}) {
    EXPECT_EQ(backOff.nextSeconds(), expected);
  }
  backOff.reset();
  EXPECT_EQ(backOff.nextSeconds(), 1.0);
}

TEST(DebouncerTest, JoinsABurstIntoOneAndNeverPutsItOff) {
  Debouncer debouncer(0.05);
  EXPECT_FALSE(debouncer.take(1.0));
  for (const double at : {1.0, 1.02, 1.04}) {
    debouncer.note(at);
    EXPECT_EQ(debouncer.due(), 1.05);
    EXPECT_FALSE(debouncer.take(at));
  }
  EXPECT_TRUE(debouncer.take(1.05));
  EXPECT_FALSE(debouncer.take(2.0));
}

TEST_F(HostReachabilityTest, AnnouncesOnceThenOnlyChanges) {
  HostReachability host = reachableHost(kFarAway);
  EXPECT_FALSE(host.takeAnnouncement(1.0));
  host.wayFound(kFarAway);
  EXPECT_FALSE(host.takeAnnouncement(2.0));
  host.wayFound(kNoWay);
  EXPECT_TRUE(host.takeAnnouncement(3.0));
  EXPECT_EQ(host.flags(), 0U);
}

TEST_F(HostReachabilityTest, NeedsNoTimerWhileNothingIsWrong) {
  EXPECT_EQ(reachableHost(kNearby).nextDue(), std::nullopt);
  EXPECT_EQ(reachableHost(kNoWay).nextDue(), std::nullopt);
}

TEST_F(HostReachabilityTest, CountsAsUnreachableWhenTheLookupDoesNotComeBackWithinASecond) {
  HostReachability host = HostReachability::ofName(0.0);
  EXPECT_EQ(host.takeLookup(0.0), 1U);
  host.wayFound(kNoWay);
  EXPECT_EQ(host.flags(), std::nullopt);
  EXPECT_FALSE(host.takeAnnouncement(0.5));
  ASSERT_TRUE(host.nextDue() && *host.nextDue() < 1.0);
  EXPECT_TRUE(host.takeAnnouncement(*host.nextDue()));
  EXPECT_EQ(host.flags(), 0U);

  host.lookupFinished(1, kSomeAddress, 20.0);
  host.wayFound(kFarAway);
  EXPECT_TRUE(host.takeAnnouncement(20.0));
  EXPECT_EQ(host.flags(), kFlagReachable);
}

TEST_F(HostReachabilityTest, RepeatsFailedLookupsEverMoreSeldomUntilOneSucceeds) {
  HostReachability host = HostReachability::ofName(0.0);
  double now = 0.0;
  host.takeAnnouncement(1.0);
  for (const double wait : {1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 60.0, 60.0}) {
    const auto generation = host.takeLookup(now);
    ASSERT_TRUE(generation);
    host.lookupFinished(*generation, {}, now);
    EXPECT_EQ(host.nextDue(), now + wait);
    now += wait;
  }
  host.networkChanged(now - 30.0);
  const auto generation = host.takeLookup(now - 30.0);
  ASSERT_TRUE(generation) << "a change of the network is a reason to look at once";
  host.lookupFinished(*generation, kSomeAddress, now);
  EXPECT_EQ(host.nextDue(), std::nullopt);
}

TEST_F(HostReachabilityTest, NewestLookupWins) {
  HostReachability host = HostReachability::ofName(0.0);
  const auto first = host.takeLookup(0.0);
  host.networkChanged(1.0);
  const auto second = host.takeLookup(1.0);
  ASSERT_TRUE(first && second);
  host.lookupFinished(*second, kSomeAddress, 2.0);
  host.lookupFinished(*first, {IpAddress::fromIpv4(1)}, 3.0);
  EXPECT_EQ(host.addresses(), kSomeAddress);
}

TEST_F(HostReachabilityTest, KeepsKnownAddressesWhenALaterLookupFails) {
  HostReachability host = HostReachability::ofName(0.0);
  host.lookupFinished(*host.takeLookup(0.0), kSomeAddress, 0.0);
  host.networkChanged(1.0);
  host.lookupFinished(*host.takeLookup(1.0), {}, 1.0);
  EXPECT_EQ(host.addresses(), kSomeAddress);
  EXPECT_EQ(host.nextDue(), 0.8) << "the first announcement";
}

TEST_F(HostReachabilityTest, FailedTrafficMakesTheHostUnreachableUntilAProbeConnects) {
  HostReachability host = reachableHost(kFarAway);
  host.trafficFailed(10.0);
  EXPECT_TRUE(host.takeAnnouncement(10.0));
  EXPECT_EQ(host.flags(), 0U);
  ASSERT_TRUE(host.takeProbe(11.0));
  host.probeConnected(11.01);
  host.tick(11.01);
  EXPECT_TRUE(host.takeAnnouncement(11.01));
  EXPECT_EQ(host.flags(), kFlagReachable);
  EXPECT_EQ(host.nextDue(), std::nullopt);
}

TEST_F(HostReachabilityTest, KeepsTheOtherFlagsWhileDown) {
  HostReachability host = reachableHost(kNearby);
  host.trafficFailed(10.0);
  EXPECT_EQ(host.flags(), kFlagIsDirect);
}

TEST_F(HostReachabilityTest, AnnouncesTheWayBackOnlyWhenTheFailedRecordIsStored) {
  HostReachability host = reachableHost(kNearby);
  host.trafficFailed(10.0);
  EXPECT_TRUE(host.takeAnnouncement(10.0));
  host.trafficConnected(10.01);
  host.tick(10.01);
  EXPECT_FALSE(host.takeAnnouncement(10.01));
  ASSERT_EQ(host.nextDue(), 10.25);
  host.tick(10.25);
  EXPECT_TRUE(host.takeAnnouncement(10.25));
  EXPECT_EQ(host.flags(), kNearby.flags);
}

TEST_F(HostReachabilityTest, ProbesANearbyHostEverySecondHoweverLongItIsGone) {
  HostReachability host = reachableHost(kNearby);
  host.trafficFailed(0.0);
  const std::vector<double> probes = probesUntil(host, 600.0);
  ASSERT_EQ(probes.size(), 600U);
  EXPECT_EQ(probes.front(), 1.0);
  EXPECT_EQ(probes.back(), 600.0);
}

TEST_F(HostReachabilityTest, ProbesAFarHostEverySecondWhileTrafficFailsAndThenEverMoreSeldom) {
  HostReachability host = reachableHost(kFarAway);
  host.trafficFailed(0.0);
  const std::vector<double> expected = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 17, 25, 41, 73, 133, 193};
  EXPECT_EQ(probesUntil(host, 200.0), expected);
  host.trafficFailed(200.0);
  EXPECT_EQ(probesUntil(host, 203.0), (std::vector<double>{201, 202, 203}));
}

TEST_F(HostReachabilityTest, ProbesNothingWithoutARouteAndAtOnceWhenTheNetworkIsBack) {
  HostReachability host = reachableHost(kFarAway);
  host.trafficFailed(0.0);
  EXPECT_TRUE(host.takeAnnouncement(0.0));
  host.wayFound(kNoWay);
  EXPECT_TRUE(probesUntil(host, 100.0).empty());
  host.networkChanged(100.0);
  host.wayFound(kFarAway);
  EXPECT_TRUE(host.takeProbe(100.0));
  EXPECT_FALSE(host.takeAnnouncement(100.0)) << "a route alone does not make up for the failed connection";
}

TEST_F(HostReachabilityTest, FalseRecoveriesDoubleTheWaitingTime) {
  HostReachability host = reachableHost(kNearby);
  double now = 0.0;
  host.trafficFailed(now);
  for (const double wait : {1.0, 1.0, 2.0, 4.0, 8.0, 16.0, 32.0, 60.0, 60.0}) {
    ASSERT_EQ(host.nextDue(), now + wait);
    now += wait;
    ASSERT_TRUE(host.takeProbe(now));
    host.probeConnected(now);
    host.tick(now);
    host.trafficFailed(now);
  }
}

TEST_F(HostReachabilityTest, ConfirmedRecoveriesKeepTheProbesDense) {
  HostReachability host = reachableHost(kNearby);
  for (const double now : {0.0, 3.0, 6.0, 9.0, 12.0}) {
    host.trafficFailed(now);
    ASSERT_EQ(host.nextDue(), now + 1.0);
    ASSERT_TRUE(host.takeProbe(now + 1.0));
    host.probeConnected(now + 1.0);
    host.tick(now + 1.0);
    ASSERT_TRUE(host.learnsFromConnections());
    host.trafficConnected(now + 1.1);
    ASSERT_FALSE(host.learnsFromConnections());
  }
}

TEST_F(HostReachabilityTest, TrafficProvesAHostThatCannotBeLookedUpHere) {
  HostReachability host = HostReachability::ofName(0.0);
  host.lookupFinished(*host.takeLookup(0.0), {}, 0.0);
  host.wayFound(kNoWay);
  EXPECT_TRUE(host.takeAnnouncement(0.0));
  ASSERT_TRUE(host.learnsFromConnections());
  host.trafficConnected(5.0);
  EXPECT_TRUE(host.takeAnnouncement(5.0));
  EXPECT_EQ(host.flags(), kFlagReachable);
  host.networkChanged(6.0);
  EXPECT_EQ(host.flags(), 0U);
}

TEST_F(HostReachabilityTest, LooksAgainWhereAHostThatIsDownMayHaveMoved) {
  HostReachability host = HostReachability::ofName(0.0);
  host.lookupFinished(*host.takeLookup(0.0), kSomeAddress, 0.0);
  host.wayFound(kFarAway);
  host.trafficFailed(4.0);
  EXPECT_EQ(host.takeLookup(4.0), std::nullopt) << "addresses that new need no doubt";
  probesUntil(host, 62.0);
  ASSERT_TRUE(host.takeProbe(*host.nextDue()));
  const auto generation = host.takeLookup(*host.nextDue());
  ASSERT_TRUE(generation);
  host.lookupFinished(*generation, {IpAddress::fromIpv4(1)}, 100.0);
  EXPECT_TRUE(host.takeProbe(100.0)) << "a new address is tried at once";
}

}  // namespace
}  // namespace kesu
