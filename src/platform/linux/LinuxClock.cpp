#include "platform/linux/LinuxClock.h"

#include <time.h>

namespace kesu {
namespace {

double secondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

double LinuxClock::now() {
  return secondsOf(CLOCK_REALTIME);
}

double LinuxClock::monotonic() {
  return secondsOf(CLOCK_MONOTONIC);
}

}  // namespace kesu
