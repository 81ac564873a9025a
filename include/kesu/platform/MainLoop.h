#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace kesu {

/// The main queue: tasks and timers that run on the host's main thread, inside pump().
///
/// post(), schedule() and cancel() may be called from any thread; everything else belongs to the main thread. Tasks run
/// in the order in which they were posted; a task posted while pumping runs in the next pump. Nothing here throws by
/// itself; what a task throws leaves pump(). In a forked child process nothing is queued and nothing runs.
class KESU_API MainLoop {
 public:
  using Task = std::function<void()>;
  using TimerId = std::uint64_t;

  virtual ~MainLoop() = default;

  /// The main loop of the installed platform.
  static MainLoop& shared();

  /// Runs what is due and returns: at most `budgetSeconds` plus the length of one task, never waiting for anything.
  /// Returns the number of tasks and timers that ran: 0 inside a task, and while another thread pumps.
  virtual std::size_t pump(double budgetSeconds = 0.004) = 0;

  /// A file descriptor that is readable when pump() has something to do, for poll(), epoll or a toolkit's watcher;
  /// -1 where there is none. Owned by the loop.
  virtual int fd() = 0;

  /// Seconds until pump() has something to do: 0 when there is work now, nothing when only a new task can bring some.
  virtual std::optional<double> nextDue() = 0;

  /// Pumps until quit(), sleeping in between: for programs without a loop of their own. Returns at once inside a task.
  virtual void run() = 0;

  /// Ends run(); the next one when none is under way. Any thread.
  virtual void quit() = 0;

  /// Sets what wakes a host that sleeps in another event system: called on the posting thread when an idle loop gets
  /// its first task or an earlier timer, and at the end of a pump that leaves tasks behind. It may post tasks, not set
  /// another callback. An empty function removes it; when this returns, the former callback does not run any more.
  virtual void setWakeCallback(std::function<void()> wake) = 0;

  /// Runs `task` in the next pump. What is queued when the process ends still runs, in an exit handler: a task that
  /// refers to what main() owns needs a way to tell that it is gone, or Application::willTerminate() before.
  virtual void post(Task task) = 0;

  /// Runs `task` once, or again and again, `delaySeconds` from now. Repeated timers keep their rhythm, do not catch up
  /// missed turns and run at most once a millisecond.
  virtual TimerId schedule(double delaySeconds, bool repeats, Task task) = 0;

  /// Takes a timer back. Unknown and spent timers are ignored.
  virtual void cancel(TimerId timer) = 0;

  /// Runs every task that is queued now, however long that takes, and those that they post until the queue is empty or
  /// `budgetSeconds` have passed; no timers. For an orderly end: callable from any thread and inside a task. It waits
  /// until a pump on another thread has ended its current task, and takes over the queue when that takes longer than a
  /// second. Returns whether the queue is empty.
  virtual bool drain(double budgetSeconds) = 0;
};

}  // namespace kesu
