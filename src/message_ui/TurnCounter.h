#pragma once

#include <cstdint>
#include <memory>

namespace kesu {

/// Something that was begun and whose answer comes later: it can tell by then whether it still counts. May be carried
/// through other threads; asked on the main thread only.
class Turn {
 public:
  Turn() = default;
  Turn(const std::shared_ptr<const std::uint64_t>& count, std::uint64_t number) : count_(count), number_(number) {}

  /// Whether who began it is still there.
  bool isAlive() const { return !count_.expired(); }

  /// Whether nothing newer was begun.
  bool isCurrent() const {
    const auto count = count_.lock();
    return count != nullptr && *count == number_;
  }

 private:
  std::weak_ptr<const std::uint64_t> count_;
  std::uint64_t number_ = 0;
};

/// Counts what its owner begins: a new turn overtakes all before it. Main thread.
class TurnCounter {
 public:
  Turn begin() { return {count_, ++*count_}; }
  Turn current() const { return {count_, *count_}; }

 private:
  std::shared_ptr<std::uint64_t> count_ = std::make_shared<std::uint64_t>(0);
};

}  // namespace kesu
