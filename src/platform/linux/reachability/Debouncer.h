#pragma once

#include <optional>

namespace kesu {

/// Collects a burst of events into one, which is due a fixed time after the first: a network that never comes to rest
/// is looked at all the same. Times are seconds on any one clock. A plain value.
class Debouncer {
 public:
  explicit Debouncer(double delaySeconds) : delaySeconds_(delaySeconds) {}

  void note(double now) { due_ = due_.value_or(now + delaySeconds_); }

  /// When the present burst is due; nothing when there is none.
  std::optional<double> due() const { return due_; }

  /// Returns whether a burst is due, and ends it then.
  bool take(double now) {
    const bool isDue = due_ && now >= *due_;
    due_ = isDue ? std::nullopt : due_;
    return isDue;
  }

 private:
  double delaySeconds_;
  std::optional<double> due_;
};

}  // namespace kesu
