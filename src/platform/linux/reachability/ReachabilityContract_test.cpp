#include <gtest/gtest.h>
#include <kesu/platform/ReachabilitySource.h>

#include <memory>
#include <thread>

#include "platform/linux/reachability/LinuxReachabilitySource.h"
#include "testing/FakeReachabilitySource.h"
#include "testing/WaitingMainLoop.h"

namespace kesu {
namespace {

/// A source whose way to kTarget a test can change.
class SourceSubject {
 public:
  virtual ~SourceSubject() = default;
  virtual ReachabilitySource& source() = 0;
  virtual void makeUnreachable() = 0;
  virtual void makeReachable() = 0;
};

const ReachabilityTarget kTarget{"127.0.0.1", 9, 0};

class FakeSourceSubject final : public SourceSubject {
 public:
  explicit FakeSourceSubject(MainLoop& loop) : source_(loop) {}
  ReachabilitySource& source() override { return source_; }
  void makeUnreachable() override { change(0); }
  void makeReachable() override { change(kFlagReachable); }

 private:
  void change(std::uint32_t flags) {
    source_.setFlags(flags);
    source_.announceChange();
  }

  testing::FakeReachabilitySource source_;
};

class LinuxSourceSubject final : public SourceSubject {
 public:
  explicit LinuxSourceSubject(MainLoop& loop) : source_(loop) {}
  ReachabilitySource& source() override { return source_; }
  void makeUnreachable() override { source_.connectionObserved(kTarget.hostName, kTarget.port, false); }
  void makeReachable() override { source_.connectionObserved(kTarget.hostName, kTarget.port, true); }

 private:
  LinuxReachabilitySource source_;
};

template <typename Made>
std::unique_ptr<SourceSubject> make(MainLoop& loop) {
  return std::make_unique<Made>(loop);
}

using MakeSubject = std::unique_ptr<SourceSubject> (*)(MainLoop& loop);

class ReachabilityContractTest : public ::testing::TestWithParam<MakeSubject> {
 protected:
  static bool isReachable(ReachabilityHandle& handle) { return (handle.flags().value_or(0) & kFlagReachable) != 0; }

  /// Waits until a watch that is started now was told: whatever was to be told before has been.
  bool waitForWhatWasQueued() {
    int calls = 0;
    const auto handle = source().watch(kTarget);
    return handle->start([&] { ++calls; }) && loop_.waitUntil([&] { return calls > 0; });
  }

  ReachabilitySource& source() { return subject_->source(); }

  testing::WaitingMainLoop loop_;
  std::unique_ptr<SourceSubject> subject_ = GetParam()(loop_.loop());
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
  subject_->makeUnreachable();
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 2; }));
  EXPECT_FALSE(isReachable(*handle));
  subject_->makeReachable();
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
  subject_->makeUnreachable();
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
  subject_->makeUnreachable();
  ASSERT_TRUE(waitForWhatWasQueued());
  EXPECT_EQ(calls, 1);
}

TEST_P(ReachabilityContractTest, ToleratesHandlesThatOutliveTheSource) {
  const auto handle = source().watch(kTarget);
  int calls = 0;
  ASSERT_TRUE(handle->start([&] { ++calls; }));
  ASSERT_TRUE(loop_.waitUntil([&] { return calls == 1; }));
  subject_.reset();
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

INSTANTIATE_TEST_SUITE_P(Sources, ReachabilityContractTest,
                         ::testing::Values(&make<FakeSourceSubject>, &make<LinuxSourceSubject>),
                         [](const auto& subject) { return subject.index == 0 ? "Fake" : "Linux"; });

}  // namespace
}  // namespace kesu
