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

/// The time that an end has.
class EndTime {
 public:
  EndTime(Clock& clock, double totalSeconds) : clock_(clock), end_(clock.monotonic() + totalSeconds) {}

  /// Begins the end; from here on queueSeconds() knows whether records depend on it.
  void begin() {
    const EndSteps* steps = endSteps.load();
    isSafe_ = steps != nullptr && steps->begin();
  }

  double secondsLeft() { return std::max(0.0, end_ - clock_.monotonic()); }

  /// How long the background queue may take.
  double queueSeconds() { return isSafe_ ? secondsLeft() : kPatienceSeconds; }

 private:
  Clock& clock_;
  double end_;
  bool isSafe_ = false;
};

// Every round runs at least all that is queued at its beginning, so that no completion is dropped for lack of time.
void runCompletions(Platform& platform, EndTime& time) {
  for (int round = 0; round < kMostRounds; ++round) {
    platform.mainLoop.drain(time.secondsLeft());
    platform.background.drain(time.queueSeconds());
    if (platform.mainLoop.nextDue() != 0.0) {
      return;
    }
  }
}

void endNetwork(Platform& platform, EndTime& time) {
  const bool isWorthWaiting = platform.http.pendingCount() > 0;
  platform.http.shutdown(isWorthWaiting ? std::min(time.secondsLeft(), kLongestGraceSeconds) : 0.0);
  runCompletions(platform, time);
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
  EndTime time(platform.clock, totalSeconds);
  time.begin();
  platform.background.drain(time.queueSeconds());
  endNetwork(platform, time);
}

void endAtExit(Platform& platform, double totalSeconds) {
  const bool wasEnding = std::exchange(endingAtExit, true);
  EndTime time(platform.clock, totalSeconds);
  if (const EndSteps* steps = endSteps.load()) {
    steps->terminate();
  }
  time.begin();
  platform.background.shutdown(time.queueSeconds());
  endNetwork(platform, time);
  endingAtExit = wasEnding;
}

bool isEndingAtExit() {
  return endingAtExit;
}

}  // namespace kesu
