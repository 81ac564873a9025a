#pragma once

#include <kesu/platform/BackgroundQueue.h>

#include <deque>
#include <utility>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A background queue that runs its tasks on the test's thread, when the test says so.
class ManualBackgroundQueue : public BackgroundQueue {
 public:
  void post(Task task) override {
    if (!task) {
      return;
    }
    {
      const MutexLock lock(mutex_);
      if (!hasEnded_) {
        tasks_.push_back(std::move(task));
        return;
      }
    }
    task();
  }

  /// Runs everything, however long that takes; false inside a task.
  bool drain(double /*seconds*/) override {
    if (isRunning_) {
      return false;
    }
    runAll();
    return true;
  }

  void shutdown(double /*seconds*/) override {
    runAll();
    const MutexLock lock(mutex_);
    hasEnded_ = true;
  }

  /// Runs the oldest task. False when there is none.
  bool runOne() {
    Task task;
    {
      const MutexLock lock(mutex_);
      if (tasks_.empty()) {
        return false;
      }
      task = std::move(tasks_.front());
      tasks_.pop_front();
    }
    const bool wasRunning = std::exchange(isRunning_, true);
    task();
    isRunning_ = wasRunning;
    return true;
  }

  /// Runs the queued tasks and those they post; returns how many ran.
  std::size_t runAll() {
    std::size_t ran = 0;
    while (runOne()) {
      ++ran;
    }
    return ran;
  }

  /// Forgets the tasks that wait, as the death of the process does.
  void discardAll() {
    const MutexLock lock(mutex_);
    tasks_.clear();
  }

  /// Tasks that wait.
  std::size_t count() {
    const MutexLock lock(mutex_);
    return tasks_.size();
  }

 private:
  Mutex mutex_;
  std::deque<Task> tasks_ KESU_GUARDED_BY(mutex_);
  bool hasEnded_ KESU_GUARDED_BY(mutex_) = false;
  bool isRunning_ = false;
};

}  // namespace kesu::testing
