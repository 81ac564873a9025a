#include "platform/linux/LinuxBackgroundQueue.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/ServiceLog.h"
#include "platform/linux/base/ServiceThread.h"

namespace kesu {
namespace {

// Below everything that draws or plays, above what only runs when the machine is idle.
constexpr int kNice = 10;

// Some 30 years: practically for ever, and within the range of the clock.
constexpr double kLongestWaitSeconds = 1e9;

std::chrono::steady_clock::time_point deadlineIn(double seconds) {
  const std::chrono::duration<double> wait(seconds > 0.0 ? std::min(seconds, kLongestWaitSeconds) : 0.0);
  return std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(wait);
}

}  // namespace

LinuxBackgroundQueue::~LinuxBackgroundQueue() {
  shutdown(kLongestWaitSeconds);
  if (worker_.joinable()) {  // Without the mutex: the thread that locked it may be missing, too.
    worker_.detach();        // A forked child has the object of a thread that it does not have.
  }
}

void LinuxBackgroundQueue::post(Task task) {
  if (!task || forkGuard_.isForkedChild()) {
    return;
  }
  Mode mode = Mode::Inline;
  {
    const MutexLock lock(mutex_);
    if (mode_ == Mode::Idle) {  // Not in the constructor: a host that posts nothing has no thread.
      startWorker();
    }
    tasks_.push_back(std::move(task));
    ++posted_;
    wakeWorker();
    if (!beginsHere()) {
      return;
    }
    mode = mode_;
  }
  runHere(mode);
}

void LinuxBackgroundQueue::postAfter(double seconds, Task task) {
  if (!task || forkGuard_.isForkedChild()) {
    return;
  }
  const MutexLock lock(mutex_);
  if (mode_ == Mode::Idle) {
    startWorker();
  }
  if (mode_ != Mode::Threaded || isRunningHere_) {
    return;  // The end has begun, or there is no thread that could wait.
  }
  const auto place = delayed_.emplace(deadlineIn(seconds), std::move(task));
  if (place == delayed_.begin()) {
    wakeWorker();
  }
}

void LinuxBackgroundQueue::startWorker() {
  worker_ = startServiceThread("kesu-worker", [this] { work(); });
  mode_ = worker_.joinable() ? Mode::Threaded : Mode::Inline;
  if (mode_ == Mode::Inline) {
    serviceLog(2, "The system refuses a thread; background work runs on the calling threads.");
  }
}

void LinuxBackgroundQueue::wakeWorker() {
  if (std::exchange(isAsleep_, false)) {
    wake_.notify_one();
  }
}

void LinuxBackgroundQueue::work() {
  ::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), kNice);
  for (;;) {
    {
      const MutexLock lock(mutex_);
      waitForHelpers();
      if (!takeBatch()) {
        if (mode_ != Mode::Threaded) {
          mode_ = Mode::Inline;
          done_.notify_all();
          return;
        }
        sleep();
        continue;
      }
      runner_ = std::this_thread::get_id();
    }
    // A batch is left half done for a helper: it has normal priority, and its thread waits for the result.
    runBatch([this] { return helpers_.load(std::memory_order_relaxed) > 0; });
  }
}

void LinuxBackgroundQueue::sleep() {
  isAsleep_ = true;
  if (delayed_.empty()) {
    wake_.wait(mutex_);
  } else {
    const Instant earliest = delayed_.begin()->first;  // A copy: the entry may be gone during the wait.
    wake_.wait_until(mutex_, earliest);
  }
  isAsleep_ = false;
}

// Leaves the queue to the threads that drain it, until the last of them has finished.
void LinuxBackgroundQueue::waitForHelpers() {
  if (runner_ == std::this_thread::get_id()) {
    runner_ = {};
  }
  while (runner_ != std::thread::id() || (helpers_ > 0 && mayHelp())) {
    done_.notify_all();
    done_.wait(mutex_);
  }
}

bool LinuxBackgroundQueue::takeBatch() {
  if (head_ < batch_.size()) {
    return true;
  }
  if (!batch_.empty()) {
    finished_ += batch_.size();
    done_.notify_all();
  }
  head_ = 0;
  batch_.clear();
  queueDueTasks();
  batch_.swap(tasks_);
  return !batch_.empty();
}

void LinuxBackgroundQueue::queueDueTasks() {
  if (delayed_.empty()) {
    return;  // The usual case costs no look at the clock.
  }
  const auto due = delayed_.upper_bound(std::chrono::steady_clock::now());
  for (auto task = delayed_.begin(); task != due; task = delayed_.erase(task)) {
    tasks_.push_back(std::move(task->second));
    ++posted_;
    wakeWorker();  // Not the worker itself but a thread that drains may move them here, and leave them to it.
  }
}

template <typename Stop>
void LinuxBackgroundQueue::runBatch(Stop stop) {
  while (head_ < batch_.size() && !stop()) {
    const Task task = std::move(batch_[head_++]);  // Counted first: the task may call shutdown(), which runs the rest.
    task();
  }
}

// Returns whether the calling thread must run the queue now, and makes it the runner then.
bool LinuxBackgroundQueue::beginsHere() {
  const auto self = std::this_thread::get_id();
  const bool mayRun = mode_ == Mode::Inline || (mode_ == Mode::Nested && runner_ == self);
  if (!mayRun || isRunningHere_) {
    return false;
  }
  isRunningHere_ = true;
  runner_ = self;
  return true;
}

void LinuxBackgroundQueue::runHere(Mode modeAfterwards) {
  for (;;) {
    {
      const MutexLock lock(mutex_);
      if (!takeBatch()) {
        isRunningHere_ = false;
        mode_ = modeAfterwards;
        if (mode_ == Mode::Inline) {
          runner_ = {};
        }
        done_.notify_all();
        return;
      }
    }
    runBatch([] { return false; });
  }
}

bool LinuxBackgroundQueue::drain(double seconds) {
  return !forkGuard_.isForkedChild() && drainUntil(deadlineIn(seconds));
}

bool LinuxBackgroundQueue::drainUntil(Instant deadline) {
  std::uint64_t wanted = 0;
  {
    const MutexLock lock(mutex_);
    queueDueTasks();
    wanted = posted_;
    if (runner_ == std::this_thread::get_id()) {
      return false;  // Inside a task: waiting for itself would never end.
    }
    if (!beginHelping(wanted, deadline)) {
      return finished_ >= wanted;
    }
  }
  for (;;) {
    runBatch([deadline] { return std::chrono::steady_clock::now() >= deadline; });
    const MutexLock lock(mutex_);
    const bool isLeft = takeBatch() && std::chrono::steady_clock::now() < deadline;
    if (!isLeft || finished_ >= wanted) {
      runner_ = {};
      endHelping();
      return finished_ >= wanted;
    }
  }
}

// Makes the calling thread the runner once the worker has finished its task. Returns false when it did not: everything
// wanted has run, there is no worker to help, or it was too late.
bool LinuxBackgroundQueue::beginHelping(std::uint64_t wanted, Instant deadline) {
  ++helpers_;
  while (finished_ < wanted && !mayHelp()) {
    if (done_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
      break;
    }
  }
  if (finished_ < wanted && mayHelp() && takeBatch()) {
    runner_ = std::this_thread::get_id();
    return true;
  }
  endHelping();
  return false;
}

bool LinuxBackgroundQueue::mayHelp() const {
  return runner_ == std::thread::id() && (mode_ == Mode::Threaded || mode_ == Mode::Stopping);
}

void LinuxBackgroundQueue::endHelping() {
  --helpers_;
  done_.notify_all();
}

void LinuxBackgroundQueue::shutdown(double seconds) {
  if (forkGuard_.isForkedChild()) {
    return;
  }
  const auto deadline = deadlineIn(seconds);
  drainUntil(deadline);
  bool isInsideTask = false;
  std::multimap<Instant, Task> dropped;  // Destroyed without the mutex: what a task holds may post.
  {
    const MutexLock lock(mutex_);
    dropped.swap(delayed_);
    isInsideTask = runner_ == std::this_thread::get_id();
    if (isInsideTask) {
      isRunningHere_ = true;
    } else if (mode_ == Mode::Idle) {
      mode_ = Mode::Inline;
    } else if (mode_ == Mode::Threaded) {
      mode_ = Mode::Stopping;
      wakeWorker();
    }
  }
  if (isInsideTask) {
    runHere(Mode::Nested);
  } else {
    leaveWorker(deadline);
  }
}

void LinuxBackgroundQueue::leaveWorker(Instant deadline) {
  std::thread worker;
  {
    const MutexLock lock(mutex_);
    while (mode_ != Mode::Inline || isRunningHere_) {
      if (done_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
        break;
      }
    }
    worker = std::move(worker_);
    if (mode_ != Mode::Inline && worker.joinable()) {
      worker.detach();  // It hangs in a task of the host; joining it would hang the end of the process.
    }
  }
  if (worker.joinable()) {
    worker.join();
  }
}

}  // namespace kesu
