#pragma once

#include "platform/QueuedMainLoop.h"
#include "testing/ManualClock.h"

namespace kesu::testing {

/// A main loop whose timers follow a manual clock. A pump's time budget is measured on that clock as well: it ends a
/// pump only when a task moves the clock. run() advances the clock to the next timer and returns when nothing is left.
class ManualMainLoop : public QueuedMainLoop {
 public:
  explicit ManualMainLoop(ManualClock& clock) : clock_(clock) {}

  /// Pumps until nothing is due. Returns how many tasks and timers ran.
  std::size_t runAll() {
    std::size_t ran = 0;
    while (nextDue() == 0.0) {
      ran += pump();
    }
    return ran;
  }

  /// Advances the clock and stops at every timer on the way, so that each runs at its own instant.
  void runFor(double seconds) {
    const double end = clock_.monotonic() + seconds;
    runAll();
    for (auto due = nextDue(); due && clock_.monotonic() + *due <= end; due = nextDue()) {
      clock_.advance(*due);
      runAll();
    }
    clock_.advance(end - clock_.monotonic());
  }

 protected:
  double loopNow() override { return clock_.monotonic(); }

  bool waitForWork() override {
    const auto due = nextDue();
    clock_.advance(due.value_or(0.0));
    return due.has_value();
  }

 private:
  ManualClock& clock_;
};

}  // namespace kesu::testing
