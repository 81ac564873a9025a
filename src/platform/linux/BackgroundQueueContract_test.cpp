#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <future>
#include <thread>

#include "platform/linux/LinuxBackgroundQueue.h"
#include "testing/ChildProcess.h"
#include "testing/ManualBackgroundQueue.h"

namespace kesu {
namespace {

constexpr double kPatienceSeconds = 10.0;

class BackgroundQueueContract : public ::testing::TestWithParam<std::string> {
 protected:
  BackgroundQueue& queue() { return isLinux() ? static_cast<BackgroundQueue&>(linux_) : manual_; }

  /// Runs everything that is due; the manual queue has no clock.
  void runDueTasks() {
    manual_.runDelayed();
    EXPECT_TRUE(queue().drain(kPatienceSeconds));
  }

 private:
  static bool isLinux() { return GetParam() == "Linux"; }

  LinuxBackgroundQueue linux_;
  testing::ManualBackgroundQueue manual_;
};

TEST_P(BackgroundQueueContract, RunsTasksInOrderAndNotOnPost) {
  std::string ran;
  EXPECT_TRUE(queue().drain(kPatienceSeconds));
  std::promise<void> gate;
  auto opened = std::make_shared<std::shared_future<void>>(gate.get_future().share());
  const auto self = std::this_thread::get_id();
  queue().post([opened, self] {
    if (std::this_thread::get_id() != self) {
      opened->wait();
    }
  });
  queue().post(nullptr);
  for (const char* name : {"a", "b", "c"}) {
    queue().post([&ran, name] { ran += name; });
  }
  EXPECT_EQ(ran, "");
  gate.set_value();
  EXPECT_TRUE(queue().drain(kPatienceSeconds));
  EXPECT_EQ(ran, "abc");
}

TEST_P(BackgroundQueueContract, DrainInsideTaskSaysNo) {
  bool drained = true;
  queue().post([&] { drained = queue().drain(kPatienceSeconds); });
  EXPECT_TRUE(queue().drain(kPatienceSeconds));
  EXPECT_FALSE(drained);
}

TEST_P(BackgroundQueueContract, ShutdownRunsWhatIsQueuedAndLaterPostsRunAtOnce) {
  std::string ran;
  queue().post([&] {
    ran += 'a';
    queue().post([&] { ran += 'b'; });
  });
  queue().shutdown(kPatienceSeconds);
  EXPECT_EQ(ran, "ab");
  queue().post([&] { ran += 'c'; });
  EXPECT_EQ(ran, "abc");
  queue().shutdown(kPatienceSeconds);
  EXPECT_TRUE(queue().drain(kPatienceSeconds));
}

TEST_P(BackgroundQueueContract, DelayedTasksRunInOrderBehindThoseQueued) {
  std::string ran;
  std::promise<void> gate;
  queue().postAfter(0.0, nullptr);
  if (GetParam() == "Linux") {
    std::promise<void> begun;
    queue().post([&] {
      begun.set_value();
      gate.get_future().wait();
    });
    begun.get_future().wait();  // From here on the worker looks for nothing until the gate opens.
  }
  queue().postAfter(0.0, [&] {
    ran += 'c';
    queue().post([&] { ran += 'e'; });
  });
  queue().postAfter(-1000.0, [&] { ran += 'd'; });
  for (const char* name : {"a", "b"}) {
    queue().post([&ran, name] { ran += name; });
  }
  EXPECT_EQ(ran, "");
  gate.set_value();
  runDueTasks();
  runDueTasks();
  EXPECT_EQ(ran, "abcde");
}

TEST_P(BackgroundQueueContract, TasksThatAreNotDueAreNotWaitedForAndDropped) {
  std::string ran;
  queue().postAfter(1e300, [&] { ran += 'x'; });
  queue().postAfter(1000.0, [&] { ran += 'y'; });
  queue().post([&] { ran += 'a'; });
  EXPECT_TRUE(queue().drain(kPatienceSeconds));
  EXPECT_EQ(ran, "a");
  queue().post([&] {
    queue().shutdown(kPatienceSeconds);
    queue().postAfter(0.0, [&] { ran += 'z'; });
  });
  queue().shutdown(kPatienceSeconds);
  queue().postAfter(0.0, [&] { ran += 'z'; });
  runDueTasks();
  EXPECT_EQ(ran, "a");
}

INSTANTIATE_TEST_SUITE_P(Queues, BackgroundQueueContract, ::testing::Values("Linux", "Manual"),
                         [](const auto& instance) { return instance.param; });

TEST(LinuxBackgroundQueue, WorkerIsOneThreadOfLowPriorityWithoutSignals) {
  LinuxBackgroundQueue queue;
  int nice = 0;
  sigset_t blocked;
  std::thread::id first;
  std::promise<void> ran;
  std::promise<std::thread::id> second;
  queue.post([&] {
    first = std::this_thread::get_id();
    nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    ran.set_value();
  });
  ran.get_future().wait();
  queue.post([&] { second.set_value(std::this_thread::get_id()); });
  EXPECT_EQ(first, second.get_future().get());
  EXPECT_NE(first, std::this_thread::get_id());
  EXPECT_EQ(nice, 10);
  EXPECT_EQ(sigismember(&blocked, SIGTERM), 1);
}

TEST(LinuxBackgroundQueue, DrainingThreadsTakeOverFromTheWorker) {
  LinuxBackgroundQueue queue;
  std::promise<void> begun;
  std::promise<void> release;
  std::vector<std::thread::id> ranOn;
  queue.post([&] {
    begun.set_value();
    release.get_future().wait();
  });
  for (int task = 0; task < 3; ++task) {
    queue.post([&] { ranOn.push_back(std::this_thread::get_id()); });
  }
  begun.get_future().wait();
  std::thread helper([&] {
    release.set_value();
    EXPECT_TRUE(queue.drain(kPatienceSeconds));
  });
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  helper.join();
  EXPECT_EQ(ranOn.size(), 3U);
  std::promise<std::thread::id> later;
  queue.post([&] { later.set_value(std::this_thread::get_id()); });
  EXPECT_NE(later.get_future().get(), std::this_thread::get_id()) << "the worker goes on afterwards";
}

TEST(LinuxBackgroundQueue, KeepsOrderOfEachThreadWhileShuttingDown) {
  LinuxBackgroundQueue queue;
  constexpr int kThreads = 4;
  constexpr int kPosts = 2000;
  std::vector<int> last(kThreads, -1);  // Unguarded: the queue never runs two tasks at a time.
  int ran = 0;
  std::atomic<int> posted{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int post = 0; post < kPosts; ++post) {
        queue.post([&, thread, post] {
          int& before = last[static_cast<std::size_t>(thread)];
          ran += before == post - 1 ? 1 : 0;
          before = post;
        });
        ++posted;
      }
    });
  }
  while (posted < kThreads * kPosts / 2) {
    std::this_thread::yield();
  }
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  queue.shutdown(kPatienceSeconds);
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  EXPECT_EQ(ran, kThreads * kPosts);
}

TEST(LinuxBackgroundQueue, GivesUpOnTaskThatHangs) {
  LinuxBackgroundQueue queue;
  std::promise<void> begun;
  std::promise<void> release;
  bool ran = false;
  queue.post([&] {
    begun.set_value();
    release.get_future().wait();
  });
  queue.post([&] { ran = true; });
  begun.get_future().wait();
  EXPECT_FALSE(queue.drain(0.001));
  queue.shutdown(0.001);
  queue.post([] {});
  release.set_value();
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  EXPECT_TRUE(ran);
}

TEST(LinuxBackgroundQueue, TaskCanShutDownAndItsLaterPostsRunAtOnce) {
  LinuxBackgroundQueue queue;
  std::string ran;
  std::promise<void> queued;
  queue.post([&] {
    queued.get_future().wait();
    queue.shutdown(kPatienceSeconds);
    ran += 'b';
    queue.post([&] {
      ran += 'c';
      queue.post([&] { ran += 'd'; });
    });
    ran += 'e';
    queue.shutdown(kPatienceSeconds);
  });
  queue.post([&] { ran += 'a'; });
  queued.set_value();
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  queue.shutdown(kPatienceSeconds);
  EXPECT_EQ(ran, "abcde");
  queue.post([&] { ran += 'f'; });
  EXPECT_EQ(ran, "abcdef");
}

TEST(LinuxBackgroundQueue, DelayedTaskRunsByItselfAlsoAheadOfALaterOne) {
  LinuxBackgroundQueue queue;
  std::string ran;
  std::promise<void> done;
  queue.postAfter(1000.0, [&] { ran += 'x'; });
  queue.post([] {});
  ASSERT_TRUE(queue.drain(kPatienceSeconds));
  queue.postAfter(0.001, [&] {
    ran += 'a';
    done.set_value();
  });
  done.get_future().wait();
  EXPECT_EQ(ran, "a");
}

TEST(LinuxBackgroundQueue, ForkedChildDropsTasksAndNeverWaits) {
  LinuxBackgroundQueue queue;
  queue.post([] {});
  ASSERT_TRUE(queue.drain(kPatienceSeconds));
  const auto verdict = testing::runInChild([&] {
    queue.post([] { ::_exit(1); });
    queue.postAfter(0.0, [] { ::_exit(1); });
    queue.shutdown(kPatienceSeconds);
    return queue.drain(kPatienceSeconds) ? 2 : 0;
  });
  EXPECT_EQ(verdict, 0);
}

}  // namespace
}  // namespace kesu
