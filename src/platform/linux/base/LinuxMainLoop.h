#pragma once

#include "platform/QueuedMainLoop.h"
#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/base/WakeEvent.h"

namespace kesu {

/// The main loop on Linux. One epoll descriptor joins an eventfd (tasks are queued) and a timerfd (the next timer is
/// due), so that any event system can watch it. A post to a loop that has work already, or that is pumping, costs no
/// system call.
///
/// Timers follow the system's monotonic clock. Where descriptors have run out fd() is -1 and run() looks for work
/// twenty times per second; pump() works as usual.
class LinuxMainLoop final : public QueuedMainLoop {
 public:
  LinuxMainLoop();

  int fd() override { return epoll_.get(); }
  std::size_t pump(double budgetSeconds = 0.004) override;

  /// Runs `onUrgent` as a task of a pump() that finds urgent data (POLLPRI) on `telling`; `waking`, a second descriptor
  /// for the same event, makes fd() readable. Two, because a pressure file reports an event only once, to the first
  /// poll(): that of the host on fd() would hide it from pump(). Costs one system call per pump().
  ///
  /// One pair at a time, owned by the caller, who calls unwatchUrgent() before closing it. Returns false where a
  /// descriptor cannot be watched. Main thread.
  bool watchUrgent(int waking, int telling, Task onUrgent);
  void unwatchUrgent();

 protected:
  double loopNow() override;
  bool waitForWork() override;
  bool isDead() override { return forkGuard_.isForkedChild(); }
  void setReadable(bool readable) override;
  void setAlarm(std::optional<double> dueSeconds) override;

 private:
  bool hasUrgentData() const;

  ForkGuard forkGuard_;
  WakeEvent tasks_;
  UniqueFd timer_;
  UniqueFd epoll_;
  int waking_ = -1;
  int telling_ = -1;
  Task onUrgent_;
};

}  // namespace kesu
