#pragma once

#include <kesu/platform/MainLoop.h>

#include <atomic>
#include <condition_variable>
#include <optional>
#include <set>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu {

/// The portable part of a main loop: queue, timers, and which thread runs them. A system adds its clock and the way to
/// wake a sleeping thread.
///
/// Only one thread runs tasks at a time, the owner. pump() never waits to become the owner: while another pump is
/// running (on this or another thread) it returns 0. drain() does wait: an exit handler may run on any thread and must
/// still run every task. While it waits, the running pump stops after its current task.
class QueuedMainLoop : public MainLoop {
 public:
  std::size_t pump(double budgetSeconds = 0.004) override;
  int fd() override { return -1; }
  std::optional<double> nextDue() override;
  void run() override;
  void quit() override;
  void setWakeCallback(std::function<void()> wake) override;
  void post(Task task) override;
  TimerId schedule(double delaySeconds, bool repeats, Task task) override;
  void cancel(TimerId timer) override;
  bool drain(double budgetSeconds) override;

 protected:
  /// Seconds on the clock that timers follow. Any thread.
  virtual double loopNow() = 0;

  /// Sleeps until pump() has something to do. Returns false when that can never happen: run() then returns.
  virtual bool waitForWork() = 0;

  /// Whether the loop must not be used in this process any more: then nothing is queued and nothing runs.
  virtual bool isDead() { return false; }

  /// Makes the host's descriptor readable (or not), because tasks are queued. Called with the queue locked, only when
  /// the argument changes.
  virtual void setReadable(bool /*readable*/) {}

  /// Makes it readable at an instant of loopNow(), or never. Called with the queue locked, only when the argument
  /// changes.
  virtual void setAlarm(std::optional<double> /*dueSeconds*/) {}

 private:
  /// A task that is ready to run, or a timer that is due (then `task` is empty and stays with the timer).
  struct Ready {
    Task task;
    TimerId timer = 0;
  };

  struct Timer {
    double due = 0.0;
    std::optional<double> interval;
    Task task;
    bool isReady = false;  ///< Waits in ready_ (or is running) and is not in order_.
  };

  class Turn;
  class Waking;

  bool beginPump();
  void collectDueTimers() KESU_REQUIRES(mutex_);
  void collectTasks() KESU_REQUIRES(mutex_);
  std::optional<Ready> take(bool draining);
  bool runOne(bool draining);
  void rearm(TimerId id, Task task);
  std::size_t queuedCount();
  std::thread::id becomeOwner();
  void giveBack(std::thread::id owner);
  bool hasTasks() const KESU_REQUIRES(mutex_) { return !posted_.empty() || head_ < ready_.size(); }
  bool updateSignals() KESU_REQUIRES(mutex_);
  void wakeHost();

  Mutex mutex_;
  std::condition_variable_any ownerLeft_;
  std::vector<Ready> posted_ KESU_GUARDED_BY(mutex_);  // For the next pump.
  std::vector<Ready> ready_ KESU_GUARDED_BY(mutex_);   // From head_ on: for this pump, or left by the last one.
  std::size_t head_ KESU_GUARDED_BY(mutex_) = 0;
  std::unordered_map<TimerId, Timer> timers_ KESU_GUARDED_BY(mutex_);
  std::set<std::pair<double, TimerId>> order_ KESU_GUARDED_BY(mutex_);
  TimerId lastTimer_ KESU_GUARDED_BY(mutex_) = 0;
  std::thread::id owner_ KESU_GUARDED_BY(mutex_);
  int drainsWaiting_ KESU_GUARDED_BY(mutex_) = 0;
  bool quit_ KESU_GUARDED_BY(mutex_) = false;
  bool readable_ KESU_GUARDED_BY(mutex_) = false;
  std::optional<double> alarm_ KESU_GUARDED_BY(mutex_);

  Mutex wakeMutex_;
  std::function<void()> wake_ KESU_GUARDED_BY(wakeMutex_);
  std::atomic<std::thread::id> waker_{};  // The thread that runs it.
  std::atomic<bool> wakesAgain_{false};
};

}  // namespace kesu
