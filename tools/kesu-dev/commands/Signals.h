#pragma once

#include <csignal>

namespace kesu::dev {

/// Blocks the signals that end a program (and SIGCHLD) in the calling thread and ignores SIGPIPE, so that the threads
/// started afterwards never see them and waitForSignal() gets them all. Undone by restoreInChild() only.
class BlockedSignals {
 public:
  BlockedSignals();

  /// Waits for one of the signals. `timeoutSeconds` < 0 waits without end; on time-out `si_signo` is 0.
  siginfo_t wait(int timeoutSeconds = -1) const;

  /// Puts back what the program was started with. Async-signal-safe: for the child between fork and exec.
  void restoreInChild() const;

 private:
  sigset_t blocked_{};
  sigset_t previous_{};
};

}  // namespace kesu::dev
