#include "delivery/ResendPass.h"

#include <optional>
#include <utility>

#include "foundation/Text.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr double kSliceSeconds = 0.002;  // What a record posted meanwhile waits at most.

// So many requests keep the network busy for longer than a slice, which leaves time to delete files. With fewer,
// sending comes first: a disk that others use may take a millisecond to delete one.
constexpr std::size_t kEnoughUnanswered = 256;

// Delivered records whose files are still there: what a process that is killed sends again.
constexpr std::size_t kMostUndeleted = 256;

constexpr const char* kManagerSource = "KesuManager";

}  // namespace

/// One pass. Shared by its slices and its requests.
struct ResendPass::Pass {
  // Background queue only.
  std::vector<std::string> paths;
  std::shared_ptr<FileLock> lock;
  std::size_t next = 0;
  UnreadableFiles unreadable;

  Mutex mutex;
  std::vector<std::string> delivered KESU_GUARDED_BY(mutex);  ///< Names of files to delete.
  std::size_t unanswered KESU_GUARDED_BY(mutex) = 0;
  bool isAllDelivered KESU_GUARDED_BY(mutex) = true;
  bool isPlanned KESU_GUARDED_BY(mutex) = true;  ///< A slice is queued or runs.
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
    runSlice(pass);
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

void ResendPass::runSlice(const std::shared_ptr<Pass>& pass) {
  const double end = clock_.monotonic() + kSliceSeconds;
  while (runStep(pass)) {
    if (clock_.monotonic() >= end) {
      background_.post([this, pass] { runSlice(pass); });
      return;
    }
  }
}

// Sends one record or deletes one file. Returns false when there is nothing to do before the next reply.
bool ResendPass::runStep(const std::shared_ptr<Pass>& pass) {
  const bool hasNext = pass->next < pass->paths.size() && !outbox_.isEnding();
  std::string delivered;
  {
    const MutexLock lock(pass->mutex);
    if (!hasNext && pass->delivered.empty()) {
      pass->isPlanned = false;
      if (pass->unanswered == 0) {
        finish(*pass, pass->isAllDelivered);
      }
      return false;
    }
    const bool isEnough = pass->unanswered >= kEnoughUnanswered || pass->delivered.size() >= kMostUndeleted;
    if (!pass->delivered.empty() && (!hasNext || isEnough)) {
      delivered = std::move(pass->delivered.back());
      pass->delivered.pop_back();
    }
  }
  if (delivered.empty()) {
    sendNext(pass);
  } else {
    store_.deleteFile(delivered);
  }
  return true;
}

void ResendPass::sendNext(const std::shared_ptr<Pass>& pass) {
  const std::string& path = pass->paths[pass->next++];
  auto record = store_.recordToRepost(path, pass->unreadable);
  if (!record) {
    return;
  }
  {
    const MutexLock lock(pass->mutex);
    ++pass->unanswered;
  }
  post_.repost(std::move(*record), [this, pass, &path](bool isDelivered) { noteReply(pass, path, isDelivered); });
}

void ResendPass::noteReply(const std::shared_ptr<Pass>& pass, const std::string& path, bool isDelivered) {
  {
    const MutexLock lock(pass->mutex);
    --pass->unanswered;
    if (isDelivered) {
      pass->delivered.emplace_back(lastPathComponent(path));
    } else {
      pass->isAllDelivered = false;
    }
    const bool isNews = !pass->delivered.empty() || pass->unanswered == 0;
    if (!isNews || std::exchange(pass->isPlanned, true)) {
      return;
    }
  }
  background_.post([this, pass] { runSlice(pass); });
}

void ResendPass::finish(Pass& pass, bool isAllDelivered) {
  pass.unreadable.log();
  pass.lock.reset();  // Now: the last copy of a completion may live longer.
  const MutexLock lock(mutex_);
  backOff_.passEnded(isAllDelivered, clock_.monotonic());
}

}  // namespace kesu
