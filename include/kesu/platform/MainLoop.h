#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace kesu {

/// The main queue: tasks and timers that run on the host's main thread, inside pump().
///
/// post(), schedule() and cancel() may be called from any thread; everything else belongs to the main thread. Tasks run
/// in the order in which they were posted; a task posted while pumping runs in the next pump. Only what a task
/// throws leaves pump(). In a forked child process nothing is queued and nothing runs.
class KESU_API MainLoop {
 public:
  using Task = std::function<void()>;
  using TimerId = std::uint64_t;

  virtual ~MainLoop() = default;

  /// Returns the main loop of the installed platform.
  static MainLoop& shared();

  /// Runs what is due, for at most `budgetSeconds` plus the length of one task; never waits. Returns the number of
  /// tasks and timers that ran: 0 inside a task, and while another thread pumps.
  virtual std::size_t pump(double budgetSeconds = 0.004) = 0;

  /// Returns a file descriptor that is readable when pump() has something to do, for poll(), epoll or a toolkit's
  /// watcher; -1 where there is none. Owned by the loop.
  virtual int fd() = 0;

  /// Returns the seconds until pump() has something to do: 0 when there is work now, nothing when nothing is planned.
  virtual std::optional<double> nextDue() = 0;

  /// Pumps until quit() and sleeps in between: for programs without a loop of their own. Returns at once inside a task.
  virtual void run() = 0;

  /// Makes run() return; the next one when none is running. Any thread.
  virtual void quit() = 0;

  /// Sets the callback that wakes a host which sleeps in another event system: called on the posting thread when an
  /// idle loop gets its first task or an earlier timer, and at the end of a pump that leaves tasks in the queue. It may
  /// post tasks, but not set another callback. An empty function removes it; the former callback does not run after the
  /// return.
  virtual void setWakeCallback(std::function<void()> wake) = 0;

  /// Runs `task` in the next pump. Tasks that are queued when the process ends still run, in an exit handler: a task
  /// that refers to objects of main() must notice that they were destroyed, or Application::willTerminate() must come
  /// first.
  virtual void post(Task task) = 0;

  /// Runs `task` `delaySeconds` from now, once or repeatedly. A repeating timer keeps its rhythm, skips the runs that
  /// it missed and runs at most once per millisecond.
  virtual TimerId schedule(double delaySeconds, bool repeats, Task task) = 0;

  /// Cancels a timer. Unknown and expired timers are ignored.
  virtual void cancel(TimerId timer) = 0;

  /// Runs every task that is queued now, however long that takes, and then those that they posted until the queue is
  /// empty or `budgetSeconds` have passed; no timers. Returns whether the queue is empty. For an orderly end: callable
  /// from any thread and inside a task. It waits until a pump on another thread has finished its current task, and
  /// takes over the queue when that takes longer than a second.
  virtual bool drain(double budgetSeconds) = 0;
};

}  // namespace kesu
