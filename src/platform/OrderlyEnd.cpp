#include "platform/OrderlyEnd.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <utility>

namespace kesu {
namespace {

// Records are worth more than time: this only keeps a process from hanging for ever when a queue cannot move, because a
// task waits for the thread that ends the process.
constexpr double kPatienceSeconds = 5.0;

// A reply that is on its way from a collector nearby arrives within this; the whole end must stay below 50 ms.
constexpr double kLongestGraceSeconds = 0.040;

// Completions post background tasks, and those may post completions. Two rounds are usual; more than this mean a task
// of the host that posts itself again and again.
constexpr int kMostRounds = 16;

// Per thread: while one ends the process, another may still pump for a living host.
constinit thread_local bool endingAtExit = false;

std::atomic<EndStep> beginStep{nullptr};
std::atomic<EndStep> finishStep{nullptr};

void take(const std::atomic<EndStep>& step) {
  if (const EndStep taken = step.load()) {
    taken();
  }
}

// Every round runs at least all that is queued at its beginning, so that no completion is dropped for lack of time.
void runCompletions(Platform& platform, double end) {
  for (int round = 0; round < kMostRounds; ++round) {
    platform.mainLoop.drain(end - platform.clock.monotonic());
    platform.background.drain(kPatienceSeconds);
    if (platform.mainLoop.nextDue() != 0.0) {
      return;
    }
  }
}

void endNetwork(Platform& platform, double end) {
  const double secondsLeft = end - platform.clock.monotonic();
  const bool isWorthWaiting = platform.http.pendingCount() > 0;
  platform.http.shutdown(isWorthWaiting ? std::clamp(secondsLeft, 0.0, kLongestGraceSeconds) : 0.0);
  runCompletions(platform, end);
  platform.defaults.synchronize();
  take(finishStep);
}

}  // namespace

void setEndSteps(EndStep begin, EndStep finish) {
  beginStep.store(begin);
  finishStep.store(finish);
}

void endOrderly(Platform& platform, double totalSeconds) {
  const double end = platform.clock.monotonic() + totalSeconds;
  take(beginStep);
  platform.background.drain(kPatienceSeconds);
  endNetwork(platform, end);
}

void endAtExit(Platform& platform, double totalSeconds) {
  const bool wasEnding = std::exchange(endingAtExit, true);
  const double end = platform.clock.monotonic() + totalSeconds;
  take(beginStep);
  platform.background.shutdown(kPatienceSeconds);
  endNetwork(platform, end);
  endingAtExit = wasEnding;
}

bool isEndingAtExit() {
  return endingAtExit;
}

}  // namespace kesu
