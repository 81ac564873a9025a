#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <future>
#include <stdexcept>
#include <thread>

#include "platform/linux/base/LinuxMainLoop.h"
#include "testing/ChildProcess.h"
#include "testing/ManualMainLoop.h"

namespace kesu {
namespace {

constexpr int kDeadlineMilliseconds = 10'000;

// A busy machine must not end a pump early.
constexpr double kNoHurrySeconds = 60.0;

bool isReadable(int fd, int milliseconds = 0) {
  pollfd wanted{fd, POLLIN, 0};
  return ::poll(&wanted, 1, milliseconds) == 1;
}

class MainLoopContract : public ::testing::TestWithParam<std::string> {
 protected:
  MainLoop& loop() { return isLinux() ? static_cast<MainLoop&>(linux_) : manual_; }
  MainLoop::Task note(const std::string& name) {
    return [this, name] { ran_ += name; };
  }
  std::string takeRan() { return std::exchange(ran_, {}); }
  std::size_t pump() { return loop().pump(kNoHurrySeconds); }
  void untilDue() {
    if (isLinux()) {
      ASSERT_TRUE(isReadable(linux_.fd(), kDeadlineMilliseconds));
    } else {
      clock_.advance(manual_.nextDue().value());
    }
  }
  void pass(double seconds) {
    clock_.advance(seconds);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (isLinux() && std::chrono::steady_clock::now() < end) {
    }
  }

 private:
  static bool isLinux() { return GetParam() == "Linux"; }

  std::string ran_;
  LinuxMainLoop linux_;
  testing::ManualClock clock_;
  testing::ManualMainLoop manual_{clock_};
};

TEST_P(MainLoopContract, RunsTasksInOrderAndThoseTheyPostInTheNextPump) {
  loop().post([this] {
    note("a")();
    loop().post(note("c"));
  });
  loop().post(note("b"));
  loop().post(nullptr);
  EXPECT_EQ(pump(), 2U);
  EXPECT_EQ(takeRan(), "ab");
  EXPECT_EQ(loop().nextDue(), 0.0);
  EXPECT_EQ(pump(), 1U);
  EXPECT_EQ(takeRan(), "c");
  EXPECT_EQ(loop().nextDue(), std::nullopt);
  EXPECT_EQ(pump(), 0U);
}

TEST_P(MainLoopContract, EndsPumpWhenBudgetIsSpentAndKeepsOrder) {
  for (const char* name : {"a", "b", "c"}) {
    loop().post([this, name] {
      note(name)();
      pass(0.001);
    });
  }
  EXPECT_EQ(loop().pump(0.0), 1U);
  loop().post(note("d"));
  EXPECT_EQ(loop().pump(0.0005), 1U);
  EXPECT_EQ(pump(), 2U);
  EXPECT_EQ(takeRan(), "abcd");
}

TEST_P(MainLoopContract, RunsTimersInOrderOfTheirInstants) {
  loop().schedule(60.0, false, note("c"));
  EXPECT_EQ(pump(), 0U);
  EXPECT_GT(loop().nextDue().value(), 0.0);
  EXPECT_LE(loop().nextDue().value(), 60.0);
  loop().schedule(0.002, false, note("b"));
  loop().schedule(0.001, false, note("a"));
  loop().schedule(-1.0, false, note("now "));
  EXPECT_EQ(loop().nextDue(), 0.0);
  pass(0.003);
  EXPECT_EQ(pump(), 3U);
  EXPECT_EQ(takeRan(), "now ab");
}

TEST_P(MainLoopContract, RepeatsTimerWithoutCatchingUp) {
  const auto timer = loop().schedule(0.003, true, note("t"));
  for (int turn = 0; turn < 3; ++turn) {
    untilDue();
    EXPECT_EQ(pump(), 1U);
  }
  pass(0.02);
  EXPECT_EQ(pump(), 1U);
  EXPECT_LE(loop().nextDue().value(), 0.003);
  EXPECT_EQ(takeRan(), "tttt");
  loop().cancel(timer);
  loop().cancel(timer);
  EXPECT_EQ(loop().nextDue(), std::nullopt);
}

TEST_P(MainLoopContract, TimersCanBeCancelledInsideTasks) {
  MainLoop::TimerId second = 0;
  MainLoop::TimerId first = loop().schedule(0.001, true, [&] {
    note("a")();
    loop().cancel(first);
    loop().cancel(second);
  });
  second = loop().schedule(0.002, false, note("b"));
  pass(0.003);
  EXPECT_EQ(pump(), 1U);
  EXPECT_EQ(takeRan(), "a");
  EXPECT_EQ(loop().nextDue(), std::nullopt);
}

TEST_P(MainLoopContract, NestedPumpAndRunDoNothing) {
  loop().post([this] {
    EXPECT_EQ(pump(), 0U);
    loop().run();
    note("a")();
  });
  loop().post(note("b"));
  EXPECT_EQ(pump(), 2U);
  EXPECT_EQ(takeRan(), "ab");
}

TEST_P(MainLoopContract, DrainInsideTaskRunsTheRest) {
  loop().post([this] {
    loop().post(note("c"));
    EXPECT_TRUE(loop().drain(1.0));
    note("a")();
    loop().post(note("d"));
  });
  loop().post(note("b"));
  EXPECT_EQ(pump(), 1U);
  EXPECT_EQ(takeRan(), "bca");
  EXPECT_EQ(pump(), 1U);
  EXPECT_EQ(takeRan(), "d");
}

TEST_P(MainLoopContract, DrainOwesWhatIsQueuedAndCutsWhatThatPosts) {
  loop().schedule(0.0, false, note("t"));
  std::function<void()> again = [&] {
    note("a")();
    pass(0.001);
    loop().post(again);
  };
  loop().post(again);
  loop().post(note("b"));
  loop().post(note("c"));
  EXPECT_FALSE(loop().drain(0.0));
  EXPECT_EQ(takeRan(), "abc");
  EXPECT_FALSE(loop().drain(0.0005));
  EXPECT_EQ(takeRan(), "a");
  EXPECT_EQ(pump(), 2U);
}

TEST_P(MainLoopContract, WakesHostOnceWhenIdleLoopGetsWork) {
  int wakes = 0;
  loop().setWakeCallback([&] { ++wakes; });
  loop().post(note("a"));
  loop().post(note("b"));
  EXPECT_EQ(wakes, 1);
  pump();
  loop().post([this] { loop().post(note("c")); });
  EXPECT_EQ(wakes, 2);
  pump();
  EXPECT_EQ(wakes, 3) << "a pump that leaves work behind";
  pump();
  loop().schedule(60.0, false, note("t"));
  loop().schedule(70.0, false, note("t"));
  EXPECT_EQ(wakes, 4) << "only the earliest timer counts";
  loop().setWakeCallback(nullptr);
  loop().post(note("d"));
  EXPECT_EQ(wakes, 4);
}

TEST_P(MainLoopContract, WakesHostAgainForWhatItsCallbackPosts) {
  int wakes = 0;
  loop().setWakeCallback([&] {
    if (++wakes == 1) {
      std::thread([&] { EXPECT_EQ(pump(), 1U); }).join();  // The host is quick: the queue is empty again.
      loop().post(note("b"));
    } else if (wakes == 2) {
      EXPECT_EQ(pump(), 1U);
      loop().schedule(5.0, false, [] {});
    }
  });
  loop().post(note("a"));
  EXPECT_EQ(takeRan(), "ab");
  EXPECT_EQ(wakes, 3);
  loop().setWakeCallback(nullptr);
}

TEST_P(MainLoopContract, RunEndsByQuitAlsoWhenThatCameFirst) {
  loop().schedule(0.001, false, [this] {
    note("a")();
    loop().quit();
  });
  loop().run();
  loop().quit();
  loop().run();
  EXPECT_EQ(takeRan(), "a");
}

TEST_P(MainLoopContract, ContinuesAfterATaskThatThrows) {
  loop().post([] { throw std::runtime_error("from the host"); });
  loop().post(note("a"));
  EXPECT_THROW(pump(), std::runtime_error);
  EXPECT_EQ(pump(), 1U);
  EXPECT_EQ(takeRan(), "a");
  const MainLoop::TimerId timer = loop().schedule(0.002, true, [] { throw std::runtime_error("from the host"); });
  for (int turn = 0; turn < 2; ++turn) {
    ASSERT_NE(loop().nextDue(), std::nullopt) << "it keeps its rhythm";
    untilDue();
    EXPECT_THROW(pump(), std::runtime_error);
  }
  loop().cancel(timer);
}

INSTANTIATE_TEST_SUITE_P(Loops, MainLoopContract, ::testing::Values("Linux", "Manual"),
                         [](const auto& instance) { return instance.param; });

TEST(LinuxMainLoop, DescriptorIsReadableExactlyWhenSomethingIsDue) {
  LinuxMainLoop loop;
  EXPECT_FALSE(isReadable(loop.fd()));
  loop.post([] {});
  loop.post([] {});
  EXPECT_TRUE(isReadable(loop.fd()));
  loop.pump(0.0);
  EXPECT_TRUE(isReadable(loop.fd())) << "one task is left";
  loop.pump(kNoHurrySeconds);
  EXPECT_FALSE(isReadable(loop.fd()));
  loop.post([&] { loop.post([] {}); });
  loop.pump(kNoHurrySeconds);
  EXPECT_TRUE(isReadable(loop.fd()));
  loop.drain(1.0);
  EXPECT_FALSE(isReadable(loop.fd()));
  const auto far = loop.schedule(60.0, false, [] {});
  EXPECT_FALSE(isReadable(loop.fd()));
  const auto near = loop.schedule(0.002, true, [] {});
  EXPECT_TRUE(isReadable(loop.fd(), kDeadlineMilliseconds));
  EXPECT_EQ(loop.pump(kNoHurrySeconds), 1U);
  loop.cancel(near);
  loop.cancel(far);
  EXPECT_FALSE(isReadable(loop.fd(), 10));
}

TEST(LinuxMainLoop, KeepsOrderOfEachThreadThatPosts) {
  LinuxMainLoop loop;
  constexpr int kThreads = 4;
  constexpr int kPosts = 2000;
  std::vector<int> last(kThreads, -1);
  int ran = 0;
  bool inOrder = true;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int post = 0; post < kPosts; ++post) {
        loop.post([&, thread, post] {
          inOrder = inOrder && last[static_cast<std::size_t>(thread)] == post - 1;
          last[static_cast<std::size_t>(thread)] = post;
          ++ran;
        });
        loop.cancel(loop.schedule(60.0, true, [] {}));
      }
    });
  }
  while (ran < kThreads * kPosts && isReadable(loop.fd(), kDeadlineMilliseconds)) {
    loop.pump(kNoHurrySeconds);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(ran, kThreads * kPosts);
  EXPECT_TRUE(inOrder);
}

TEST(LinuxMainLoop, OneThreadPumpsAtATimeAndDrainTakesOverBetweenTasks) {
  LinuxMainLoop loop;
  std::promise<void> entered;
  std::promise<void> release;
  std::thread::id drainedBy;
  loop.post([&] {
    entered.set_value();
    release.get_future().wait();
  });
  loop.post([&] { drainedBy = std::this_thread::get_id(); });
  std::thread pumping([&] { loop.pump(kNoHurrySeconds); });
  entered.get_future().wait();
  EXPECT_EQ(loop.pump(kNoHurrySeconds), 0U);
  std::thread draining([&] {
    release.set_value();
    EXPECT_TRUE(loop.drain(10.0));
  });
  pumping.join();
  draining.join();
  EXPECT_NE(drainedBy, std::thread::id());
  EXPECT_EQ(loop.nextDue(), std::nullopt);
}

TEST(LinuxMainLoop, DrainTakesQueueFromOwnerThatHangs) {
  LinuxMainLoop loop;
  std::promise<void> entered;
  std::promise<void> release;
  bool ran = false;
  loop.post([&] {
    entered.set_value();
    release.get_future().wait();
  });
  loop.post([&] { ran = true; });
  std::thread pumping([&] { EXPECT_EQ(loop.pump(kNoHurrySeconds), 1U); });
  entered.get_future().wait();
  EXPECT_TRUE(loop.drain(10.0));
  EXPECT_TRUE(ran);
  release.set_value();
  pumping.join();
  loop.post([] {});
  EXPECT_EQ(loop.pump(kNoHurrySeconds), 1U);
}

TEST(LinuxMainLoop, ForkedChildRunsNothing) {
  LinuxMainLoop loop;
  bool ran = false;
  loop.post([&] { ran = true; });
  const auto verdict = testing::runInChild([&] {
    loop.post([&] { ran = true; });
    const bool isQuiet =
        loop.pump(kNoHurrySeconds) == 0 && loop.drain(1.0) && !loop.nextDue() && loop.schedule(0, true, [] {}) == 0;
    loop.run();
    return isQuiet && !ran ? 0 : 1;
  });
  EXPECT_EQ(verdict, 0);
  EXPECT_EQ(loop.pump(kNoHurrySeconds), 1U);
}

}  // namespace
}  // namespace kesu
