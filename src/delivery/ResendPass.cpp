#include "delivery/ResendPass.h"

#include <atomic>
#include <utility>

#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kSliceSeconds = 0.002;  // What a record posted meanwhile waits at most.
constexpr const char* kManagerSource = "KesuManager";

}  // namespace

/// One pass. Shared by its slices and its requests.
struct ResendPass::Pass {
  std::vector<std::string> paths;
  std::shared_ptr<FileLock> lock;
  std::size_t next = 0;
  UnreadableFiles unreadable;  ///< Background queue only, as all above.
  std::atomic<std::size_t> open{1};  ///< Requests without outcome, and one for the pass itself until all are sent.
  std::atomic<bool> isAllDelivered{true};
};

ResendPass::ResendPass(KesuStore& store, KesuPost& post, Outbox& outbox, Files& files, BackgroundQueue& background,
                       Clock& clock)
    : store_(store), post_(post), outbox_(outbox), files_(files), background_(background), clock_(clock) {
  post_.setObserver([this](KesuPost::FirstAttempt end) { observe(end); });
}

void ResendPass::start(NetworkStatus status) {
  switch (status) {
    case NetworkStatus::ReachableCell:
      KESU_LOG_AT(3, kManagerSource, 1955, "**** cell ****");
      break;
    case NetworkStatus::Reachable:
      KESU_LOG_AT(3, kManagerSource, 1953, "**** wifi ****");
      break;
    case NetworkStatus::NotReachable:
      KESU_LOG_AT(3, kManagerSource, 1951, "**** Not Reachable ****");
      return;
  }
  request();
}

void ResendPass::observe(KesuPost::FirstAttempt end) {
  {
    const MutexLock lock(mutex_);
    if (end == KesuPost::FirstAttempt::Kept) {
      backOff_.recordKept();
      return;
    }
    if (!backOff_.recordDelivered()) {
      return;
    }
  }
  request();
}

void ResendPass::request() {
  double pause = 0.0;
  {
    const MutexLock lock(mutex_);
    pause = backOff_.secondsUntilNext(clock_.monotonic());
    if (pause > 0.0 && std::exchange(isPostponed_, true)) {
      return;
    }
  }
  if (pause == 0.0) {
    background_.post([this] { run(); });
    return;
  }
  background_.postAfter(pause, [this] {
    {
      const MutexLock lock(mutex_);
      isPostponed_ = false;
    }
    run();
  });
}

void ResendPass::run() {
  const bool isRetrying = outbox_.retryParked();
  std::vector<std::string> paths = store_.storedFiles();
  std::shared_ptr<FileLock> lock = paths.empty() ? nullptr : lockAmongProcesses();
  if (!lock && (isRetrying || !paths.empty())) {
    // How first attempts end is not known yet, and what another process sends may fail: both need the next sign of
    // life, after a pause.
    const MutexLock guard(mutex_);
    backOff_.passEnded(false, clock_.monotonic());
  }
  if (lock) {
    auto pass = std::make_shared<Pass>();
    pass->paths = std::move(paths);
    pass->lock = std::move(lock);
    sendSlice(pass);
  }
}

std::shared_ptr<FileLock> ResendPass::lockAmongProcesses() {
  std::shared_ptr<FileLock> lock = processLock_.lock();
  if (!lock) {
    lock = files_.tryLock(store_.documentsDirectory());
    processLock_ = lock;
  }
  return lock;
}

void ResendPass::sendSlice(const std::shared_ptr<Pass>& pass) {
  const double end = clock_.monotonic() + kSliceSeconds;
  while (pass->next < pass->paths.size() && !outbox_.isEnding()) {
    if (auto record = store_.recordToRepost(pass->paths[pass->next++], pass->unreadable)) {
      ++pass->open;
      post_.repost(std::move(*record), [this, pass](bool isDelivered) { endOne(*pass, isDelivered); });
    }
    if (clock_.monotonic() >= end && pass->next < pass->paths.size()) {
      background_.post([this, pass] { sendSlice(pass); });
      return;
    }
  }
  pass->unreadable.log();
  endOne(*pass, true);
}

void ResendPass::endOne(Pass& pass, bool isDelivered) {
  if (!isDelivered) {
    pass.isAllDelivered = false;
  }
  if (--pass.open == 0) {
    pass.lock.reset();  // Now: the last copy of the completion may live longer.
    const MutexLock lock(mutex_);
    backOff_.passEnded(pass.isAllDelivered, clock_.monotonic());
  }
}

}  // namespace kesu
