#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {

/// Wakes a thread that sleeps in poll(). signal() may be called from any thread; clear() belongs to the sleeper.
class WakeEvent {
 public:
  WakeEvent() : fd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

  /// Poll it for reading; -1 when the system had no descriptor left.
  int fd() const { return fd_.get(); }

  /// Makes the descriptor readable until clear(). A full counter is readable already, so failure does not matter.
  void signal() const {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(fd_.get(), &one, sizeof one);
  }

  /// Clears all signals so far. Returns false when there were none.
  bool clear() const {
    std::uint64_t count = 0;
    return ::read(fd_.get(), &count, sizeof count) == static_cast<ssize_t>(sizeof count);
  }

 private:
  UniqueFd fd_;
};

}  // namespace kesu
