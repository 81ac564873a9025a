#include "outbox/OutboxHandOver.h"

namespace kesu {
namespace {

// A checkpoint waits for the disk several times; without one the log keeps its segments.
constexpr int kRunsPerCheckpoint = 30;
constexpr AppendLog::Sequence kMostUnsettled = 10'000;  // Some four segments.

}  // namespace

void OutboxHandOver::run(AppendLog::Sequence newest, bool isThorough) {
  const bool isFlushable = entryFiles_ == nullptr || entryFiles_->flush();
  // A change is made in the step that logs it: what is newest now is in the user defaults now. Those are on the disk
  // after a checkpoint only, and until then the log is needed.
  const bool isCheckpointDue = isThorough || ++runs_ >= kRunsPerCheckpoint || newest - settled_ >= kMostUnsettled;
  if (defaults_.synchronize() && isCheckpointDue && defaults_.checkpoint()) {
    log_.settle(newest);
    settled_ = newest;
    runs_ = 0;
  }
  if (isFlushable) {
    log_.flush();
  }
}

void OutboxHandOver::runAtEnd() {
  if (!defaults_.isLoaded()) {  // The last chance to keep who this installation is: it looks for the file again.
    defaults_.checkpoint();
  }
  defaults_.synchronize();
  if (entryFiles_ == nullptr || entryFiles_->areFlushed()) {  // There is no time to wait for them.
    log_.startFlush();
  }
}

}  // namespace kesu
