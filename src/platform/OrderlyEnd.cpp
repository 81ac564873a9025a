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

std::atomic<const EndSteps*> endSteps{nullptr};

// Returns how long the background queue may take.
double beginEnd(double totalSeconds) {
  const EndSteps* steps = endSteps.load();
  const bool isSafe = steps != nullptr && steps->begin();
  return isSafe ? totalSeconds : kPatienceSeconds;
}

// Every round runs at least all that is queued at its beginning, so that no completion is dropped for lack of time.
void runCompletions(Platform& platform, double end, double patience) {
  for (int round = 0; round < kMostRounds; ++round) {
    platform.mainLoop.drain(end - platform.clock.monotonic());
    platform.background.drain(patience);
    if (platform.mainLoop.nextDue() != 0.0) {
      return;
    }
  }
}

void endNetwork(Platform& platform, double end, double patience) {
  const double secondsLeft = end - platform.clock.monotonic();
  const bool isWorthWaiting = platform.http.pendingCount() > 0;
  platform.http.shutdown(isWorthWaiting ? std::clamp(secondsLeft, 0.0, kLongestGraceSeconds) : 0.0);
  runCompletions(platform, end, patience);
  platform.defaults.synchronize();
  if (const EndSteps* steps = endSteps.load()) {
    steps->finish();
  }
}

}  // namespace

void setEndSteps(const EndSteps* steps) {
  endSteps.store(steps);
}

void endOrderly(Platform& platform, double totalSeconds) {
  if (platform.outbox.isInForkedChild()) {
    return;
  }
  const double end = platform.clock.monotonic() + totalSeconds;
  const double patience = beginEnd(totalSeconds);
  platform.background.drain(patience);
  endNetwork(platform, end, patience);
}

void endAtExit(Platform& platform, double totalSeconds) {
  const bool wasEnding = std::exchange(endingAtExit, true);
  const double end = platform.clock.monotonic() + totalSeconds;
  if (const EndSteps* steps = endSteps.load()) {
    steps->terminate();
  }
  const double patience = beginEnd(totalSeconds);
  platform.background.shutdown(patience);
  endNetwork(platform, end, patience);
  endingAtExit = wasEnding;
}

bool isEndingAtExit() {
  return endingAtExit;
}

}  // namespace kesu
