#include "platform/linux/base/LinuxMainLoop.h"

#include <poll.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/ServiceLog.h"

namespace kesu {
namespace {

// How soon run() notices work without descriptors: later would be felt, sooner would cost power.
constexpr int kBlindWaitMilliseconds = 50;

// About three years: later timers are armed again when this one fires.
constexpr double kLongestAlarmSeconds = 1e8;

bool watch(int epoll, int fd, std::uint32_t events = EPOLLIN) {
  epoll_event event{};
  event.events = events;
  return ::epoll_ctl(epoll, EPOLL_CTL_ADD, fd, &event) == 0;
}

}  // namespace

LinuxMainLoop::LinuxMainLoop()
    : timer_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)), epoll_(::epoll_create1(EPOLL_CLOEXEC)) {
  if (!watch(epoll_.get(), tasks_.fd()) || !watch(epoll_.get(), timer_.get())) {
    epoll_.reset();
    serviceLog(2, "The main loop has no descriptor to wait on.");
  }
}

std::size_t LinuxMainLoop::pump(double budgetSeconds) {
  if (telling_ >= 0 && !isDead() && hasUrgentData()) {
    post([this] {
      if (onUrgent_) {
        onUrgent_();
      }
    });
  }
  return QueuedMainLoop::pump(budgetSeconds);
}

bool LinuxMainLoop::hasUrgentData() const {
  pollfd wanted{telling_, POLLPRI, 0};
  return ::poll(&wanted, 1, 0) == 1 && (wanted.revents & POLLPRI) != 0;
}

bool LinuxMainLoop::watchUrgent(int waking, int telling, Task onUrgent) {
  if (isDead() || !watch(epoll_.get(), waking, EPOLLPRI)) {
    return false;
  }
  waking_ = waking;
  telling_ = telling;
  onUrgent_ = std::move(onUrgent);
  return true;
}

void LinuxMainLoop::unwatchUrgent() {
  if (waking_ >= 0) {
    ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, waking_, nullptr);
  }
  waking_ = -1;
  telling_ = -1;
  onUrgent_ = nullptr;
}

double LinuxMainLoop::loopNow() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

bool LinuxMainLoop::waitForWork() {
  if (isDead()) {
    return false;
  }
  if (!epoll_) {
    const double seconds = nextDue().value_or(1.0);
    ::poll(nullptr, 0, std::clamp(static_cast<int>(seconds * 1000.0) + 1, 1, kBlindWaitMilliseconds));
    return true;
  }
  pollfd wanted{epoll_.get(), POLLIN, 0};
  ::poll(&wanted, 1, -1);
  return true;
}

void LinuxMainLoop::setReadable(bool readable) {
  if (readable) {
    tasks_.signal();
  } else {
    tasks_.clear();
  }
}

void LinuxMainLoop::setAlarm(std::optional<double> dueSeconds) {
  itimerspec alarm{};
  if (dueSeconds) {
    const double due = std::clamp(*dueSeconds, 0.0, loopNow() + kLongestAlarmSeconds);
    const double whole = std::floor(due);
    alarm.it_value.tv_sec = static_cast<time_t>(whole);
    // Never zero, which would disarm; never a nanosecond early, which would wake the host for nothing.
    alarm.it_value.tv_nsec = std::clamp(static_cast<long>(std::ceil((due - whole) * 1e9)), 1L, 999'999'999L);
  }
  ::timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &alarm, nullptr);
}

}  // namespace kesu
