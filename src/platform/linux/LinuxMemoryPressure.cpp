#include "platform/linux/LinuxMemoryPressure.h"

#include <fcntl.h>
#include <unistd.h>

#include <string_view>
#include <utility>

namespace kesu {
namespace {

using namespace std::string_view_literals;

// Microseconds of waiting in microseconds of time. A process without privileges may ask for multiples of 2 s only, and
// the kernel then looks every 2 s. 7.5 % is felt as stutter while there is still time to give something back; pages
// read again after a start stay far below. The end of the text is part of it.
constexpr std::string_view kTrigger = "some 150000 2000000\0"sv;

}  // namespace

LinuxMemoryPressure::LinuxMemoryPressure(LinuxMainLoop& loop, std::function<double()> now,
                                         std::function<void()> underPressure, Opener opener)
    : loop_(loop), now_(std::move(now)), underPressure_(std::move(underPressure)), opener_(std::move(opener)) {}

LinuxMemoryPressure::~LinuxMemoryPressure() {
  loop_.unwatchUrgent();
}

UniqueFd LinuxMemoryPressure::openTrigger(const std::string& path) {
  UniqueFd file(::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  if (file && ::write(file.get(), kTrigger.data(), kTrigger.size()) != static_cast<ssize_t>(kTrigger.size())) {
    file.reset();
  }
  return file;
}

bool LinuxMemoryPressure::start() {
  // The kernel serves the newest trigger first: so the one that pump() polls has the event before the other one wakes.
  waking_ = opener_();
  telling_ = waking_ ? opener_() : UniqueFd();
  if (telling_ && loop_.watchUrgent(waking_.get(), telling_.get(), [this] { fired(); })) {
    return true;
  }
  waking_.reset();
  telling_.reset();
  return false;
}

void LinuxMemoryPressure::fired() {
  const double now = now_();
  if (!lastWarning_ || now - *lastWarning_ >= kQuietSeconds) {
    lastWarning_ = now;
    underPressure_();
  }
}

}  // namespace kesu
