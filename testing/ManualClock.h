#pragma once

#include <kesu/platform/Clock.h>

#include <atomic>

namespace kesu::testing {

/// A clock that stands still until a test moves it. Any thread may read it.
class ManualClock : public Clock {
 public:
  /// Starts at 2017-03-15 12:02:00 UTC by default.
  explicit ManualClock(double secondsSince1970 = 1489579320.0) : now_(secondsSince1970) {}

  double now() override { return now_.load(); }
  double monotonic() override { return monotonic_.load(); }

  /// Advances both clocks.
  void advance(double seconds) {
    now_.store(now_.load() + seconds);
    monotonic_.store(monotonic_.load() + seconds);
  }

  /// Advances both clocks to an instant of the wall clock. An instant in the past sets the wall clock back; the
  /// monotonic clock then stands still.
  void set(double secondsSince1970) {
    const double passed = secondsSince1970 - now_.load();
    now_.store(secondsSince1970);
    if (passed > 0.0) {
      monotonic_.store(monotonic_.load() + passed);
    }
  }

  /// Sets the wall clock; no time passes.
  void jumpTo(double secondsSince1970) { now_.store(secondsSince1970); }

 private:
  std::atomic<double> now_;
  std::atomic<double> monotonic_{1000.0};
};

}  // namespace kesu::testing
