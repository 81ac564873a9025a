#include "platform/linux/LinuxLogSink.h"

#include <errno.h>
#include <limits.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <utility>

namespace kesu {
namespace {

/// Keeps SIGPIPE from the calling thread for a scope and swallows the one that a write raised meanwhile.
class SigPipeBlocked {
 public:
  SigPipeBlocked() {
    sigemptyset(&sigPipe_);
    sigaddset(&sigPipe_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &sigPipe_, &before_);
  }

  ~SigPipeBlocked() {
    if (hasBroken_ && !wasPending_) {
      const timespec noTime{};
      while (sigtimedwait(&sigPipe_, nullptr, &noTime) < 0 && errno == EINTR) {
      }
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

  SigPipeBlocked(const SigPipeBlocked&) = delete;
  SigPipeBlocked& operator=(const SigPipeBlocked&) = delete;

  void noteBroken() { hasBroken_ = true; }

 private:
  sigset_t sigPipe_;
  sigset_t before_{};
  bool wasPending_ = false;
  bool hasBroken_ = false;
};

bool isWritable(int fd) {
  pollfd wanted{fd, POLLOUT, 0};
  return ::poll(&wanted, 1, 0) == 1;
}

std::string prefix() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm fields{};
  localtime_r(&now.tv_sec, &fields);
  char time[32];
  std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &fields);
  char text[128];
  const int length = std::snprintf(text, sizeof text, "%s.%03ld %.40s[%d] ", time, now.tv_nsec / 1'000'000,
                                   program_invocation_short_name, static_cast<int>(::getpid()));
  return {text, static_cast<std::size_t>(length)};
}

}  // namespace

LinuxLogSink::LinuxLogSink(Function function, int fd) : function_(std::move(function)), fd_(fd) {}

void LinuxLogSink::write(int level, std::string_view text) {
  if (function_ && forwards_.load()) {
    function_(level, text);
    return;
  }
  const int errnoBefore = errno;
  const unsigned lost = lost_.exchange(0);
  std::string line = prefix();
  if (lost > 0) {
    line += "(" + std::to_string(lost) + " lines lost) ";
  }
  line += text;
  line += '\n';
  if (!put(line)) {
    lost_.fetch_add(lost + 1);
  }
  errno = errnoBefore;
}

// A pipe that is writable takes PIPE_BUF bytes without blocking; longer lines go piece by piece.
bool LinuxLogSink::put(std::string_view line) const {
  SigPipeBlocked sigPipe;
  while (!line.empty()) {
    if (!isWritable(fd_)) {
      return false;
    }
    const ssize_t written = ::write(fd_, line.data(), std::min<std::size_t>(line.size(), PIPE_BUF));
    if (written > 0) {
      line.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0 || errno != EINTR) {
      sigPipe.noteBroken();
      return false;
    }
  }
  return true;
}

}  // namespace kesu
