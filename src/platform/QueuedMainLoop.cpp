#include "platform/QueuedMainLoop.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>

#include "foundation/Afterwards.h"

namespace kesu {
namespace {

// Timers may run this much early, so that rounding between clocks never costs a second wake-up.
constexpr double kTimerSlackSeconds = 1e-6;

// A timer that repeats faster would keep the host from ever sleeping.
constexpr double kShortestIntervalSeconds = 0.001;

// How long drain() waits for the owner to finish its task before it takes the rest of the queue away from it: an owner
// that hangs while the process ends must not cost records.
constexpr std::chrono::milliseconds kHandOver{1000};

}  // namespace

// Ends the ownership of the queue also when a host's task throws.
class QueuedMainLoop::Turn {
 public:
  Turn(QueuedMainLoop& loop, std::thread::id ownerBefore) : loop_(loop), ownerBefore_(ownerBefore) {}
  ~Turn() { loop_.giveBack(ownerBefore_); }

  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  QueuedMainLoop& loop_;
  std::thread::id ownerBefore_;
};

// Names the thread that runs the wake callback for as long as it does, also when that throws.
class QueuedMainLoop::Waking {
 public:
  explicit Waking(std::atomic<std::thread::id>& waker) : waker_(waker) { waker_.store(std::this_thread::get_id()); }
  ~Waking() { waker_.store({}); }

  Waking(const Waking&) = delete;
  Waking& operator=(const Waking&) = delete;

 private:
  std::atomic<std::thread::id>& waker_;
};

std::size_t QueuedMainLoop::pump(double budgetSeconds) {
  if (isDead() || !beginPump()) {
    return 0;
  }
  const Turn turn(*this, {});
  const double end = loopNow() + budgetSeconds;
  std::size_t ran = 0;
  while (runOne(false)) {
    ++ran;
    if (loopNow() >= end) {
      break;
    }
  }
  return ran;
}

bool QueuedMainLoop::beginPump() {
  const MutexLock lock(mutex_);
  if (owner_ != std::thread::id()) {
    return false;
  }
  collectDueTimers();
  collectTasks();
  if (ready_.empty()) {
    return false;
  }
  owner_ = std::this_thread::get_id();
  return true;
}

void QueuedMainLoop::collectDueTimers() {
  if (order_.empty()) {
    return;
  }
  const double latest = loopNow() + kTimerSlackSeconds;
  while (!order_.empty() && order_.begin()->first <= latest) {
    const TimerId id = order_.begin()->second;
    order_.erase(order_.begin());
    timers_[id].isReady = true;
    ready_.push_back({nullptr, id});
  }
}

void QueuedMainLoop::collectTasks() {
  if (head_ == ready_.size()) {
    ready_.clear();
    head_ = 0;
  }
  if (ready_.empty()) {
    ready_.swap(posted_);
    return;
  }
  std::move(posted_.begin(), posted_.end(), std::back_inserter(ready_));
  posted_.clear();
}

std::optional<QueuedMainLoop::Ready> QueuedMainLoop::take(bool draining) {
  const MutexLock lock(mutex_);
  if (draining) {
    collectTasks();
  } else if (drainsWaiting_ > 0 || owner_ != std::this_thread::get_id()) {
    return std::nullopt;
  }
  while (head_ < ready_.size()) {
    Ready next = std::move(ready_[head_++]);
    if (next.timer == 0) {
      return next;
    }
    const auto found = timers_.find(next.timer);
    if (found == timers_.end()) {
      continue;
    }
    if (draining) {
      found->second.isReady = false;
      order_.emplace(found->second.due, next.timer);
      continue;
    }
    next.task = std::move(found->second.task);
    return next;
  }
  return std::nullopt;
}

bool QueuedMainLoop::runOne(bool draining) {
  std::optional<Ready> next = take(draining);
  if (!next) {
    return false;
  }
  afterwards([&] { next->task(); },
             [&] {
               if (next->timer != 0) {
                 rearm(next->timer, std::move(next->task));
               }
             });
  return true;
}

void QueuedMainLoop::rearm(TimerId id, Task task) {
  const MutexLock lock(mutex_);
  const auto found = timers_.find(id);
  if (found == timers_.end()) {
    return;
  }
  Timer& timer = found->second;
  if (!timer.interval) {
    timers_.erase(found);
    return;
  }
  timer.task = std::move(task);
  timer.isReady = false;
  const double missed = std::floor(std::max(0.0, loopNow() - timer.due) / *timer.interval);
  timer.due += (missed + 1.0) * *timer.interval;
  order_.emplace(timer.due, id);
}

std::optional<double> QueuedMainLoop::nextDue() {
  if (isDead()) {
    return std::nullopt;
  }
  const MutexLock lock(mutex_);
  if (hasTasks()) {
    return 0.0;
  }
  if (order_.empty()) {
    return std::nullopt;
  }
  return std::max(0.0, order_.begin()->first - loopNow());
}

void QueuedMainLoop::run() {
  for (;;) {
    pump();
    {
      const MutexLock lock(mutex_);
      if (std::exchange(quit_, false) || owner_ == std::this_thread::get_id()) {
        return;
      }
    }
    if (nextDue() != 0.0 && !waitForWork()) {
      return;
    }
  }
}

void QueuedMainLoop::quit() {
  {
    const MutexLock lock(mutex_);
    quit_ = true;
  }
  post([] {});
}

void QueuedMainLoop::setWakeCallback(std::function<void()> wake) {
  const MutexLock lock(wakeMutex_);
  wake_ = std::move(wake);
}

// What the callback itself posts may be the first task of a loop that was pumped empty meanwhile: the host is then
// woken once more, by the call that is under way.
void QueuedMainLoop::wakeHost() {
  if (waker_.load() == std::this_thread::get_id()) {
    wakesAgain_.store(true);
    return;
  }
  const MutexLock lock(wakeMutex_);
  const Waking waking(waker_);
  do {
    wakesAgain_.store(false);
    if (wake_) {
      wake_();
    }
  } while (wakesAgain_.load());
}

void QueuedMainLoop::post(Task task) {
  if (isDead() || !task) {
    return;
  }
  {
    const MutexLock lock(mutex_);
    posted_.push_back({std::move(task), 0});
    if (owner_ != std::thread::id() || !updateSignals()) {
      return;
    }
  }
  wakeHost();
}

MainLoop::TimerId QueuedMainLoop::schedule(double delaySeconds, bool repeats, Task task) {
  if (isDead() || !task) {
    return 0;
  }
  const double delay = std::isfinite(delaySeconds) ? std::max(0.0, delaySeconds) : 0.0;
  TimerId id = 0;
  {
    const MutexLock lock(mutex_);
    id = ++lastTimer_;
    Timer& timer = timers_[id];
    timer.due = loopNow() + delay;
    timer.task = std::move(task);
    if (repeats) {
      timer.interval = std::max(delay, kShortestIntervalSeconds);
    }
    order_.emplace(timer.due, id);
    if (owner_ != std::thread::id() || !updateSignals()) {
      return id;
    }
  }
  wakeHost();
  return id;
}

void QueuedMainLoop::cancel(TimerId timer) {
  Task dying;  // Destroyed outside the lock: it may own something that calls back.
  const MutexLock lock(mutex_);
  const auto found = timers_.find(timer);
  if (found == timers_.end()) {
    return;
  }
  dying = std::move(found->second.task);
  order_.erase({found->second.due, timer});
  timers_.erase(found);
  if (owner_ == std::thread::id()) {
    updateSignals();
  }
}

bool QueuedMainLoop::drain(double budgetSeconds) {
  if (isDead()) {
    return true;
  }
  const Turn turn(*this, becomeOwner());
  const double end = loopNow() + budgetSeconds;
  for (std::size_t owed = queuedCount(); runOne(true); owed -= owed > 0 ? 1 : 0) {
    if (owed <= 1 && loopNow() >= end) {
      return queuedCount() == 0;
    }
  }
  return true;
}

std::size_t QueuedMainLoop::queuedCount() {
  const MutexLock lock(mutex_);
  return posted_.size() + ready_.size() - head_;
}

// Returns the owner for giveBack(): this thread again when one of its own tasks drains, else none.
std::thread::id QueuedMainLoop::becomeOwner() {
  const MutexLock lock(mutex_);
  const auto self = std::this_thread::get_id();
  const auto deadline = std::chrono::steady_clock::now() + kHandOver;
  ++drainsWaiting_;
  while (owner_ != std::thread::id() && owner_ != self) {
    if (ownerLeft_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
      break;
    }
  }
  --drainsWaiting_;
  const bool isNested = owner_ == self;
  owner_ = self;
  return isNested ? self : std::thread::id();
}

void QueuedMainLoop::giveBack(std::thread::id owner) {
  {
    const MutexLock lock(mutex_);
    if (owner_ != std::this_thread::get_id() || owner == owner_) {
      return;
    }
    owner_ = owner;
    ownerLeft_.notify_all();
    updateSignals();
    if (!hasTasks()) {
      return;
    }
  }
  wakeHost();
}

// Returns whether the host has to be woken: something became due earlier than it knew.
bool QueuedMainLoop::updateSignals() {
  bool earlier = false;
  if (hasTasks() != readable_) {
    readable_ = !readable_;
    earlier = readable_;
    setReadable(readable_);
  }
  std::optional<double> due;
  if (!order_.empty()) {
    due = order_.begin()->first;
  }
  if (due != alarm_) {
    earlier = earlier || (due && (!alarm_ || *due < *alarm_));
    alarm_ = due;
    setAlarm(due);
  }
  return earlier;
}

}  // namespace kesu
