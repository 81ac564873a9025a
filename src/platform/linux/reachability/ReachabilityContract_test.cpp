#include <gtest/gtest.h>
#include <kesu/platform/ReachabilitySource.h>

#include <optional>
#include <string>
#include <thread>

#include "platform/linux/reachability/LinuxReachabilitySource.h"
#include "testing/FakeReachabilitySource.h"
#include "testing/WaitingMainLoop.h"

namespace kesu {
namespace {

const ReachabilityTarget kTarget{"127.0.0.1", 9, 0};

class ReachabilityContractTest : public ::testing::TestWithParam<std::string> {
 protected:
  static bool isReachable(ReachabilityHandle& handle) { return (handle.flags().value_or(0) & kFlagReachable) != 0; }

  /// Waits until a watch that is started now was told: whatever was to be told before has been.
  bool waitForWhatWasQueued() {
    int calls = 0;
    const auto handle = source().watch(kTarget);
    return handle->start([&] { ++calls; }) && loop_.waitUntil([&] { return calls > 0; });
  }

  /// Changes the way to kTarget.
  void makeReachable(bool isReachable) {
    linux_->connectionObserved(kTarget.hostName, kTarget.port, isReachable);
    fake_->setFlags(isReachable ? std::uint32_t{kFlagReachable} : 0U);
    fake_->announceChange();
  }
  void destroySources() {
    linux_.reset();
    fake_.reset();
  }

  ReachabilitySource& source() { return GetParam() == "Linux" ? static_cast<ReachabilitySource&>(*linux_) : *fake_; }

  testing::WaitingMainLoop loop_;

 private:
  std::optional<LinuxReachabilitySource> linux_{loop_.loop()};
  std::optional<testing::FakeReachabilitySource> fake_{loop_.loop()};
};

TEST_P(ReachabilityContractTest, TellsOnceAfterStartAndThenOfChanges) {
  int calls = 0;
  const auto handle = source().watch(kTarget);
  ASSERT_TRUE(handle->start([&] { ++calls; }));
  EXPECT_EQ(calls, 0) << "never within start()";
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 1; }));
  EXPECT_TRUE(isReachable(*handle));
  ASSERT_TRUE(waitForWhatWasQueued());
  EXPECT_EQ(calls, 1);
  makeReachable(false);
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 2; }));
  EXPECT_FALSE(isReachable(*handle));
  makeReachable(true);
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 3; }));
  EXPECT_TRUE(isReachable(*handle));
}

TEST_P(ReachabilityContractTest, StartsOnlyOnceUntilStopped) {
  const auto handle = source().watch(kTarget);
  int first = 0;
  int second = 0;
  ASSERT_TRUE(handle->start([&] { ++first; }));
  EXPECT_FALSE(handle->start([&] { ++second; }));
  handle->stop();
  ASSERT_TRUE(handle->start([&] { ++second; }));
  ASSERT_TRUE(loop_.waitUntil([&] { return second == 1; }));
  EXPECT_EQ(first, 0);
}

TEST_P(ReachabilityContractTest, CallsNothingAfterStopOrDestruction) {
  int calls = 0;
  const auto stopped = source().watch(kTarget);
  auto gone = source().watch(kTarget);
  ASSERT_TRUE(stopped->start([&] { ++calls; }));
  ASSERT_TRUE(gone->start([&] { ++calls; }));
  stopped->stop();
  stopped->stop();
  gone.reset();
  makeReachable(false);
  ASSERT_TRUE(waitForWhatWasQueued());
  EXPECT_EQ(calls, 0);
}

TEST_P(ReachabilityContractTest, MayBeStoppedAndDestroyedByItsOwnCallback) {
  auto handle = source().watch(kTarget);
  int calls = 0;
  ASSERT_TRUE(handle->start([&] {
    handle.reset();
    ++calls;
  }));
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 1; }));
  makeReachable(false);
  ASSERT_TRUE(waitForWhatWasQueued());
  EXPECT_EQ(calls, 1);
}

TEST_P(ReachabilityContractTest, ToleratesHandlesThatOutliveTheSource) {
  const auto handle = source().watch(kTarget);
  int calls = 0;
  ASSERT_TRUE(handle->start([&] { ++calls; }));
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 1; }));
  destroySources();
  handle->flags();
  handle->stop();
  loop_.waitUntil([] { return true; });
  EXPECT_EQ(calls, 1);
}

TEST_P(ReachabilityContractTest, AnswersInternetFlagsFromAnyThread) {
  const auto here = source().internetFlags();
  ASSERT_TRUE(here);
  std::optional<std::uint32_t> there;
  std::thread([&] { there = source().internetFlags(); }).join();
  EXPECT_EQ(there, here);
}

INSTANTIATE_TEST_SUITE_P(Sources, ReachabilityContractTest, ::testing::Values("Fake", "Linux"),
                         [](const auto& instance) { return instance.param; });

}  // namespace
}  // namespace kesu
