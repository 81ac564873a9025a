#pragma once

#include <kesu/platform/BackgroundQueue.h>

#include <deque>
#include <iterator>
#include <utility>
#include <vector>

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

  /// Keeps the task for runDelayed(); the time does not matter. Dropped after shutdown().
  void postAfter(double /*seconds*/, Task task) override {
    const MutexLock lock(mutex_);
    if (task && !hasEnded_) {
      delayed_.push_back(std::move(task));
    }
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
    std::vector<Task> dropped;
    const MutexLock lock(mutex_);
    hasEnded_ = true;
    dropped.swap(delayed_);
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

  /// Lets the time of the delayed tasks planned so far come, and runs the queue with them; returns how many tasks ran.
  std::size_t runDelayed() {
    {
      const MutexLock lock(mutex_);
      tasks_.insert(tasks_.end(), std::move_iterator(delayed_.begin()), std::move_iterator(delayed_.end()));
      delayed_.clear();
    }
    return runAll();
  }

  /// Drops the queued and the delayed tasks, as the death of the process does.
  void discardAll() {
    const MutexLock lock(mutex_);
    tasks_.clear();
    delayed_.clear();
  }

  /// Counts the queued tasks, without those that are delayed.
  std::size_t count() {
    const MutexLock lock(mutex_);
    return tasks_.size();
  }

 private:
  Mutex mutex_;
  std::deque<Task> tasks_ KESU_GUARDED_BY(mutex_);
  std::vector<Task> delayed_ KESU_GUARDED_BY(mutex_);
  bool hasEnded_ KESU_GUARDED_BY(mutex_) = false;
  bool isRunning_ = false;
};

}  // namespace kesu::testing
