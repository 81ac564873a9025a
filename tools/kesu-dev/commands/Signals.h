#pragma once

#include <csignal>

namespace kesu::dev {

/// Blocks the signals that end a program (and SIGCHLD) in the calling thread and ignores SIGPIPE, so that the threads
/// started afterwards never see them and wait() gets them all. Only restoreInChild() undoes it.
class BlockedSignals {
 public:
  BlockedSignals();

  /// Waits for one of the signals. `timeoutSeconds` < 0 waits without end; `si_signo` is 0 on time-out.
  siginfo_t wait(int timeoutSeconds = -1) const;

  /// Restores the signals that this program was started with. Async-signal-safe: for the child between fork and exec.
  void restoreInChild() const;

 private:
  sigset_t blocked_{};
  sigset_t previous_{};
};

}  // namespace kesu::dev
