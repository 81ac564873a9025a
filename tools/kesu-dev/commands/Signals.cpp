#include "tools/kesu-dev/commands/Signals.h"

#include <cerrno>
#include <ctime>
#include <initializer_list>

namespace kesu::dev {

BlockedSignals::BlockedSignals() {
  sigemptyset(&blocked_);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGCHLD}) {
    sigaddset(&blocked_, signal);
  }
  pthread_sigmask(SIG_BLOCK, &blocked_, &previous_);
  std::signal(SIGPIPE, SIG_IGN);
}

siginfo_t BlockedSignals::wait(int timeoutSeconds) const {
  siginfo_t info{};
  const timespec patience{timeoutSeconds, 0};
  int result = -1;
  do {
    result = timeoutSeconds < 0 ? sigwaitinfo(&blocked_, &info) : sigtimedwait(&blocked_, &info, &patience);
  } while (result < 0 && errno == EINTR);
  if (result < 0) {
    info.si_signo = 0;
  }
  return info;
}

void BlockedSignals::restoreInChild() const {
  std::signal(SIGPIPE, SIG_DFL);
  pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
}

}  // namespace kesu::dev
