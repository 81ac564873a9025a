#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <kesu/Export.h>

namespace kesu {

/// The main queue: tasks and timers that run on the host's main thread, inside pump().
///
/// post(), schedule() and cancel() may be called from any thread; everything else belongs to the main thread. Tasks run in
/// the order in which they were posted; a task posted while pumping runs in the next pump. Nothing here throws.
class KESU_API MainLoop {
 public:
  using Task = std::function<void()>;
  using TimerId = std::uint64_t;

  virtual ~MainLoop() = default;

  /// The main loop of the installed platform.
  static MainLoop& shared();

  /// Runs what is due and returns: at most `budgetSeconds` plus the length of one task, never waiting for anything.
  /// Returns the number of tasks and timers that ran.
  virtual std::size_t pump(double budgetSeconds = 0.004) = 0;

  /// A file descriptor that is readable when pump() has something to do, for poll(), epoll or a toolkit's watcher;
  /// -1 where there is none. Owned by the loop.
  virtual int fd() = 0;

  /// Seconds until pump() has something to do: 0 when there is work now, nothing when only a new task can bring some.
  virtual std::optional<double> nextDue() = 0;

  /// Pumps until quit(), sleeping in between: for programs without a loop of their own.
  virtual void run() = 0;

  /// Ends run(). Any thread.
  virtual void quit() = 0;

  /// Called (on the posting thread) when an idle loop gets its first task: hosts that sleep in another event system wake
  /// it here. An empty function removes it.
  virtual void setWakeCallback(std::function<void()> wake) = 0;

  /// Runs `task` in the next pump.
  virtual void post(Task task) = 0;

  /// Runs `task` once, or again and again, `delaySeconds` from now. Repeated timers do not catch up missed turns.
  virtual TimerId schedule(double delaySeconds, bool repeats, Task task) = 0;

  /// Takes a timer back. Unknown and spent timers are ignored.
  virtual void cancel(TimerId timer) = 0;

  /// Runs every task that is queued, and those they post, until the queue is empty or `budgetSeconds` have passed; no
  /// timers. For an orderly end. Returns whether the queue is empty.
  virtual bool drain(double budgetSeconds) = 0;
};

}  // namespace kesu
