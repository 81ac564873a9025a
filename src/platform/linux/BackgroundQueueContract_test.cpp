#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <future>
#include <thread>

#include "platform/linux/LinuxBackgroundQueue.h"
#include "testing/ManualBackgroundQueue.h"

namespace kesu {
namespace {

constexpr double kPatienceSeconds = 10.0;

class BackgroundQueueContract : public ::testing::TestWithParam<std::string> {
 protected:
  BackgroundQueue& queue() { return *queue_; }

 private:
  std::unique_ptr<BackgroundQueue> queue_ =
      GetParam() == "Linux" ? std::unique_ptr<BackgroundQueue>(std::make_unique<LinuxBackgroundQueue>())
                            : std::unique_ptr<BackgroundQueue>(std::make_unique<testing::ManualBackgroundQueue>());
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

INSTANTIATE_TEST_SUITE_P(Queues, BackgroundQueueContract, ::testing::Values("Linux", "Manual"),
                         [](const auto& instance) { return instance.param; });

TEST(LinuxBackgroundQueue, WorkerIsOneThreadOfLowPriorityWithoutSignals) {
  LinuxBackgroundQueue queue;
  int nice = 0;
  sigset_t blocked;
  std::thread::id first;
  std::thread::id second;
  queue.post([&] {
    first = std::this_thread::get_id();
    nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()));
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  });
  ASSERT_TRUE(queue.drain(kPatienceSeconds));
  queue.post([&] { second = std::this_thread::get_id(); });
  ASSERT_TRUE(queue.drain(kPatienceSeconds));
  EXPECT_EQ(first, second);
  EXPECT_NE(first, std::this_thread::get_id());
  EXPECT_EQ(nice, 10);
  EXPECT_EQ(sigismember(&blocked, SIGTERM), 1);
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
  queue.shutdown(kPatienceSeconds);
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(queue.drain(kPatienceSeconds));
  EXPECT_EQ(ran, kThreads * kPosts);
}

TEST(LinuxBackgroundQueue, GivesUpOnTaskThatHangs) {
  LinuxBackgroundQueue queue;
  std::promise<void> release;
  bool ran = false;
  queue.post([&] { release.get_future().wait(); });
  queue.post([&] { ran = true; });
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

TEST(LinuxBackgroundQueue, ForkedChildDropsTasksAndNeverWaits) {
  LinuxBackgroundQueue queue;
  queue.post([] {});
  ASSERT_TRUE(queue.drain(kPatienceSeconds));
  const pid_t child = ::fork();
  if (child == 0) {
    queue.post([] { ::_exit(1); });
    queue.shutdown(kPatienceSeconds);
    ::_exit(queue.drain(kPatienceSeconds) ? 2 : 0);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace kesu
