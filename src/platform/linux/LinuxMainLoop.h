#pragma once

#include "platform/QueuedMainLoop.h"
#include "platform/linux/ForkGuard.h"
#include "platform/linux/UniqueFd.h"
#include "platform/linux/WakeEvent.h"

namespace kesu {

/// The main loop on Linux. One epoll descriptor holds an eventfd (tasks wait) and a timerfd (the next timer is due), so
/// that any event system can watch it. A post to a loop that has work already, or that is pumping, costs no system
/// call.
///
/// Timers follow the system's monotonic clock. Where descriptors have run out fd() is -1 and run() looks for work
/// twenty times a second; pump() works as ever.
class LinuxMainLoop final : public QueuedMainLoop {
 public:
  LinuxMainLoop();

  int fd() override { return epoll_.get(); }

 protected:
  double loopNow() override;
  bool waitForWork() override;
  bool isDead() override { return forkGuard_.isForkedChild(); }
  void setReadable(bool readable) override;
  void setAlarm(std::optional<double> dueSeconds) override;

 private:
  ForkGuard forkGuard_;
  WakeEvent tasks_;
  UniqueFd timer_;
  UniqueFd epoll_;
};

}  // namespace kesu
