#pragma once

#include <kesu/platform/BackgroundQueue.h>

#include <deque>
#include <utility>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A background queue whose tasks the test runs on its own thread.
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

  /// Runs all tasks, however long that takes. Returns false inside a task.
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

  /// Runs the oldest task. Returns false when there is none.
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

  /// Drops the queued tasks, as the death of the process does.
  void discardAll() {
    const MutexLock lock(mutex_);
    tasks_.clear();
  }

  /// Counts the queued tasks.
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
