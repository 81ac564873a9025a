#pragma once

#include <kesu/platform/BackgroundQueue.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <map>
#include <thread>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/ForkGuard.h"

namespace kesu {

/// The background queue on Linux: one thread of low priority (nice 10), made by the first post.
///
/// The worker removes all queued tasks in one step and runs them without the mutex, so that a post costs one short
/// critical section, and a system call only when the worker sleeps. A thread that drains does not wait for the slow
/// worker: it takes over after the worker's current task and runs the rest itself. After shutdown(), and where the
/// system refuses a thread, the posting threads run the tasks: one at a time, and the running thread also runs what is
/// posted meanwhile, so that tasks stay in order and never overlap.
///
/// The worker sleeps without a time limit while no delayed task is planned.
class LinuxBackgroundQueue final : public BackgroundQueue {
 public:
  LinuxBackgroundQueue() = default;
  ~LinuxBackgroundQueue() override;

  LinuxBackgroundQueue(const LinuxBackgroundQueue&) = delete;
  LinuxBackgroundQueue& operator=(const LinuxBackgroundQueue&) = delete;

  void post(Task task) override;
  void postAfter(double seconds, Task task) override;
  bool drain(double seconds) override;
  void shutdown(double seconds) override;

 private:
  using Instant = std::chrono::steady_clock::time_point;

  enum class Mode {
    Idle,      ///< No post so far, no thread.
    Threaded,  ///< The worker runs the tasks.
    Stopping,  ///< The worker runs what is queued, then ends.
    Nested,    ///< shutdown() was called by a task: its thread runs its own later posts at once.
    Inline     ///< The posting threads run the tasks.
  };

  void startWorker() KESU_REQUIRES(mutex_);
  void work();
  void waitForHelpers() KESU_REQUIRES(mutex_);
  bool beginsHere() KESU_REQUIRES(mutex_);
  void runHere(Mode modeAfterwards);
  template <typename Stop>
  void runBatch(Stop stop);
  bool takeBatch() KESU_REQUIRES(mutex_);
  void queueDueTasks() KESU_REQUIRES(mutex_);
  void sleep() KESU_REQUIRES(mutex_);
  bool drainUntil(Instant deadline);
  bool beginHelping(std::uint64_t wanted, Instant deadline) KESU_REQUIRES(mutex_);
  void endHelping() KESU_REQUIRES(mutex_);
  bool mayHelp() const KESU_REQUIRES(mutex_);
  void leaveWorker(Instant deadline);
  void wakeWorker() KESU_REQUIRES(mutex_);

  ForkGuard forkGuard_;
  Mutex mutex_;
  std::condition_variable_any wake_;  // For the worker.
  std::condition_variable_any done_;  // For drain() and shutdown(), and for a worker that waits for them.
  std::atomic<int> helpers_{0};       // Threads that drain. Changed under the mutex, read by the worker without it.
  Mode mode_ KESU_GUARDED_BY(mutex_) = Mode::Idle;
  std::vector<Task> tasks_ KESU_GUARDED_BY(mutex_);
  std::multimap<Instant, Task> delayed_ KESU_GUARDED_BY(mutex_);  // By the time when they are due.
  std::uint64_t posted_ KESU_GUARDED_BY(mutex_) = 0;
  std::uint64_t finished_ KESU_GUARDED_BY(mutex_) = 0;
  bool isAsleep_ KESU_GUARDED_BY(mutex_) = false;
  bool isRunningHere_ KESU_GUARDED_BY(mutex_) = false;  // Some thread is in runHere().
  std::thread worker_ KESU_GUARDED_BY(mutex_);
  std::thread::id runner_ KESU_GUARDED_BY(mutex_);  // The thread that runs tasks, if any.

  // Confined to the runner.
  std::vector<Task> batch_;
  std::size_t head_ = 0;
};

}  // namespace kesu
