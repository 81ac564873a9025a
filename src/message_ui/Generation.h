#pragma once

#include <cstdint>
#include <memory>

namespace kesu {

/// A step that was begun and whose answer comes later: says by then whether the answer still counts. May be carried
/// through other threads; asked on the main thread only.
class Generation {
 public:
  Generation(const std::shared_ptr<const std::uint64_t>& counter, std::uint64_t number)
      : counter_(counter), number_(number) {}

  /// Returns whether the counter, and with it its owner, still exists.
  bool isAlive() const { return !counter_.expired(); }

  /// Returns whether the counter still exists and has not advanced since.
  bool isCurrent() const {
    const auto counter = counter_.lock();
    return counter != nullptr && *counter == number_;
  }

 private:
  std::weak_ptr<const std::uint64_t> counter_;
  std::uint64_t number_;
};

/// Counts the steps of its owner: each one supersedes all before it. Main thread.
class GenerationCounter {
 public:
  Generation advance() { return {counter_, ++*counter_}; }
  Generation current() const { return {counter_, *counter_}; }

 private:
  std::shared_ptr<std::uint64_t> counter_ = std::make_shared<std::uint64_t>(0);
};

}  // namespace kesu
