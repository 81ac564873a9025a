#pragma once

#include <poll.h>

#include <chrono>
#include <functional>

#include "platform/linux/base/WakeEvent.h"
#include "testing/ManualClock.h"
#include "testing/ManualMainLoop.h"

namespace kesu::testing {

/// A main loop for tests of services that post from threads of their own: it runs what they post while the test waits
/// for a condition. Its timers never come due. Confined to the test's thread, except post().
class WaitingMainLoop {
 public:
  WaitingMainLoop() {
    loop_.setWakeCallback([this] { wake_.signal(); });
  }

  MainLoop& loop() { return loop_; }

  /// Runs tasks until `condition` is true, which is checked after every task. Returns false when it is not within
  /// `seconds`.
  bool waitUntil(const std::function<bool()>& condition, double seconds = 10.0) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (true) {
      wake_.clear();
      loop_.runAll();
      if (condition()) {
        return true;
      }
      const std::chrono::duration<double, std::milli> left = deadline - std::chrono::steady_clock::now();
      if (left.count() <= 0.0) {
        return false;
      }
      pollfd polled{wake_.fd(), POLLIN, 0};
      ::poll(&polled, 1, static_cast<int>(left.count()) + 1);
    }
  }

 private:
  ManualClock clock_;
  WakeEvent wake_;
  ManualMainLoop loop_{clock_};
};

}  // namespace kesu::testing
