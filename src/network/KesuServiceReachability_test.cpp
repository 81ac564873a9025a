#include "network/KesuServiceReachability.h"

#include <gtest/gtest.h>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

TEST(KesuServiceReachability, DerivesTheStatusFromFlags) {
  const struct {
    std::uint32_t flags;
    NetworkStatus network;
    NetworkStatus localWiFi;
  } rows[] = {
      {0x0, NetworkStatus::NotReachable, NetworkStatus::NotReachable},
      {0x2, NetworkStatus::Reachable, NetworkStatus::NotReachable},
      {0x20002, NetworkStatus::Reachable, NetworkStatus::Reachable},
      {0x20000, NetworkStatus::NotReachable, NetworkStatus::NotReachable},
      {0x2 | 0x4, NetworkStatus::NotReachable, NetworkStatus::NotReachable},
      {0x2 | 0x4 | 0x8, NetworkStatus::Reachable, NetworkStatus::NotReachable},
      {0x2 | 0x4 | 0x20, NetworkStatus::Reachable, NetworkStatus::NotReachable},
      {0x2 | 0x4 | 0x8 | 0x10, NetworkStatus::NotReachable, NetworkStatus::NotReachable},
      {0x2 | 0x8 | 0x10, NetworkStatus::Reachable, NetworkStatus::NotReachable},
      {0x2 | 0x4 | 0x40000, NetworkStatus::Reachable, NetworkStatus::NotReachable},
      {0x40000, NetworkStatus::NotReachable, NetworkStatus::NotReachable},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(KesuServiceReachability::networkStatusForFlags(row.flags), row.network) << std::hex << row.flags;
    EXPECT_EQ(KesuServiceReachability::localWiFiStatusForFlags(row.flags), row.localWiFi) << std::hex << row.flags;
  }
}

class WatchTest : public ::testing::Test {
 protected:
  testing::ScopedPlatform platform;
};

TEST_F(WatchTest, PostsANotificationOnEveryChangeUntilItEnds) {
  int told = 0;
  auto watched = KesuServiceReachability::reachabilityWithHostName(platform.reachability, platform.notifications,
                                                                   "collector.example", 8443);
  platform.notifications.addObserver(kKesuReachabilityChangedNotification, watched.get(),
                                     [&told](const Notification&) { ++told; });
  EXPECT_TRUE(watched->startNotifier());
  EXPECT_FALSE(watched->startNotifier());
  platform.settle();
  EXPECT_EQ(told, 1);
  platform.reachability.announceChange();
  platform.settle();
  EXPECT_EQ(told, 2);
  watched->stopNotifier();
  platform.reachability.announceChange();
  platform.settle();
  EXPECT_EQ(told, 2);
  EXPECT_EQ(platform.reachability.targets().back().port, 8443);
}

TEST_F(WatchTest, ReadsFlagsByTheRuleOfItsKind) {
  auto internet =
      KesuServiceReachability::reachabilityForInternetConnection(platform.reachability, platform.notifications);
  auto wifi = KesuServiceReachability::reachabilityForLocalWiFi(platform.reachability, platform.notifications);
  EXPECT_EQ(platform.reachability.targets()[1].address, 0xA9FE0000U);
  platform.reachability.setFlags(kFlagReachable);
  EXPECT_EQ(internet->currentReachabilityStatus(), NetworkStatus::Reachable);
  EXPECT_EQ(wifi->currentReachabilityStatus(), NetworkStatus::NotReachable);
  EXPECT_FALSE(internet->connectionRequired());
  platform.reachability.setFlags(kFlagReachable | kFlagConnectionRequired);
  EXPECT_TRUE(internet->connectionRequired());
  platform.reachability.setFlags(std::nullopt);
  EXPECT_EQ(internet->currentReachabilityStatus(), NetworkStatus::NotReachable);
  EXPECT_FALSE(internet->connectionRequired());
}

TEST_F(WatchTest, GivesNothingForAHostThatCannotBeWatched) {
  EXPECT_EQ(KesuServiceReachability::reachabilityWithHostName(platform.reachability, platform.notifications, "", 443),
            nullptr);
  platform.reachability.setWatchFails(true);
  EXPECT_EQ(KesuServiceReachability::reachabilityWithHostName(platform.reachability, platform.notifications, "x", 443),
            nullptr);
}

}  // namespace
}  // namespace kesu
