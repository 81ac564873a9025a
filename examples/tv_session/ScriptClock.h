#pragma once

#include <kesu/platform/Clock.h>

#include <atomic>
#include <chrono>

namespace tv {

/// The system's clock, which a script may move: "clock +86400" is tomorrow.
class ScriptClock : public kesu::Clock {
 public:
  double now() override {
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count() + offset_;
  }
  double monotonic() override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
  }

  void move(double seconds) { offset_ = offset_ + seconds; }

 private:
  std::atomic<double> offset_{0.0};
};

}  // namespace tv
