#pragma once

#include <algorithm>

namespace kesu {

/// Waiting times that double: 1, 2, 4, 8, 16, 32, 60, 60 ... seconds. A plain value.
class BackOff {
 public:
  /// The next waiting time in seconds.
  double nextSeconds() {
    const double result = next_;
    next_ = std::min(next_ * 2.0, kLongestSeconds);
    return result;
  }

  /// Begins again with the shortest.
  void reset() { next_ = kShortestSeconds; }

 private:
  static constexpr double kShortestSeconds = 1.0;
  static constexpr double kLongestSeconds = 60.0;

  double next_ = kShortestSeconds;
};

}  // namespace kesu
