#include "platform/linux/LinuxRandom.h"

#include <fcntl.h>
#include <string.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

// Sandboxes that forbid getrandom() usually still have the device.
bool fillFromDevice(std::span<std::uint8_t> bytes) {
  const UniqueFd device(::open("/dev/urandom", O_RDONLY | O_CLOEXEC));
  while (!bytes.empty()) {
    const ssize_t got = ::read(device.get(), bytes.data(), bytes.size());
    if (got > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(got));
    } else if (got == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

void fillFromSystem(std::span<std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t got = ::getrandom(bytes.data(), bytes.size(), 0);
    if (got > 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      if (!fillFromDevice(bytes)) {
        std::fputs("KESU the system has no random numbers\n", stderr);
        std::abort();
      }
      return;
    }
  }
}

}  // namespace

void LinuxRandom::fill(std::span<std::uint8_t> bytes) {
  if (bytes.size() > kLongestFromBlock || forkGuard_.isForkedChild()) {
    fillFromSystem(bytes);
    return;
  }
  const MutexLock lock(mutex_);
  if (left_ < bytes.size()) {
    fillFromSystem(block_);
    left_ = block_.size();
  }
  left_ -= bytes.size();
  const std::span<std::uint8_t> given = std::span(block_).subspan(left_, bytes.size());
  std::copy(given.begin(), given.end(), bytes.begin());
  ::explicit_bzero(given.data(), given.size());
}

}  // namespace kesu
