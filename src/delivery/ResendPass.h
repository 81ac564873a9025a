#pragma once

#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/Clock.h>
#include <kesu/platform/Files.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "delivery/KesuPost.h"
#include "delivery/KesuStore.h"
#include "delivery/ResendBackOff.h"
#include "foundation/Mutex.h"
#include "network/KesuServiceReachability.h"
#include "outbox/Outbox.h"

namespace kesu {

/// Sends every stored record again and deletes the files of those that were delivered, on the background queue: when
/// the reachability of the collector changes, and when it takes a record after others had to be stored.
///
/// Kept: a pass waits for no reply, has no limit, and does not look whether an earlier one is still running: records
/// that are still stored are sent again. Two things hold one back: a pass of another process with the same home, and,
/// once a pass has left records behind, the pause of ResendBackOff. Reading and sending is cut into slices, so that
/// thousands of stored records do not delay those that are posted meanwhile.
class ResendPass {
 public:
  /// Observes the first attempts of `post`.
  ResendPass(KesuStore& store, KesuPost& post, Outbox& outbox, Files& files, BackgroundQueue& background, Clock& clock);

  /// Starts a pass if the collector is reachable by `status`; logs the status at level 3. Any thread.
  void start(NetworkStatus status);

 private:
  struct Pass;

  void observe(KesuPost::FirstAttempt end);
  void request();
  void run();
  void runSlice(const std::shared_ptr<Pass>& pass);
  bool runStep(const std::shared_ptr<Pass>& pass);
  void sendNext(const std::shared_ptr<Pass>& pass);
  void noteReply(const std::shared_ptr<Pass>& pass, const std::string& path, bool isDelivered);
  void finish(Pass& pass, bool isAllDelivered);
  std::shared_ptr<FileLock> lockAmongProcesses();

  KesuStore& store_;
  KesuPost& post_;
  Outbox& outbox_;
  Files& files_;
  BackgroundQueue& background_;
  Clock& clock_;
  std::weak_ptr<FileLock> processLock_;  // Shared by the passes of this process. Background queue only.

  Mutex mutex_;
  ResendBackOff backOff_ KESU_GUARDED_BY(mutex_);
  bool isPostponed_ KESU_GUARDED_BY(mutex_) = false;  // A pass is planned for the end of the pause.
};

}  // namespace kesu
