#pragma once

#include <algorithm>

namespace kesu {

/// Waiting times that double: 1, 2, 4, 8, 16, 32, 60, 60 ... seconds, so that a short outage is noticed within seconds
/// and a long one costs one attempt per minute. A plain value.
class BackOff {
 public:
  /// Returns the next waiting time in seconds.
  double nextSeconds() {
    const double result = next_;
    next_ = std::min(next_ * 2.0, kLongestSeconds);
    return result;
  }

  /// Begins with the shortest again.
  void reset() { next_ = kShortestSeconds; }

 private:
  static constexpr double kShortestSeconds = 1.0;
  static constexpr double kLongestSeconds = 60.0;

  double next_ = kShortestSeconds;
};

}  // namespace kesu
