#include "platform/OrderlyEnd.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace kesu {
namespace {

// Records go before time: this only keeps a process from hanging for ever when a queue cannot move, because a task
// waits for the thread that ends the process.
constexpr double kPatienceSeconds = 5.0;

constexpr double kLongestGraceSeconds = 0.040;

// What it costs to store one record that did not arrive.
constexpr double kStoreSeconds = 40e-6;

// Completions post background tasks, and those may post completions. Two rounds are usual; more than this are a host's
// task that posts itself again and again.
constexpr int kMostRounds = 16;

// By thread: while one ends the process, another may still pump for a host that is there.
constinit thread_local bool endingAtExit = false;

double graceFor(std::size_t pending, double secondsLeft) {
  const double storing = static_cast<double>(pending) * kStoreSeconds;
  return pending == 0 ? 0.0 : std::clamp(secondsLeft - storing, 0.0, kLongestGraceSeconds);
}

// Every round runs at least all that is queued at its beginning, so that no completion is cut by the time.
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
  platform.http.shutdown(graceFor(platform.http.pendingCount(), secondsLeft));
  runCompletions(platform, end);
  platform.defaults.synchronize();
}

}  // namespace

void endOrderly(Platform& platform, double totalSeconds) {
  const double end = platform.clock.monotonic() + totalSeconds;
  platform.background.drain(kPatienceSeconds);
  endNetwork(platform, end);
}

void endAtExit(Platform& platform, double totalSeconds) {
  const bool wasEnding = std::exchange(endingAtExit, true);
  const double end = platform.clock.monotonic() + totalSeconds;
  platform.background.shutdown(kPatienceSeconds);
  endNetwork(platform, end);
  endingAtExit = wasEnding;
}

bool isEndingAtExit() {
  return endingAtExit;
}

}  // namespace kesu
