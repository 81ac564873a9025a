#pragma once

#include <kesu/Export.h>

#include <functional>

namespace kesu {

/// The one serial low-priority worker. Tasks run in the order in which they were posted, one at a time. In a forked
/// child process there is no worker: tasks are dropped there and nothing waits.
class KESU_API BackgroundQueue {
 public:
  using Task = std::function<void()>;

  virtual ~BackgroundQueue() = default;

  /// Queues a task. Any thread; never blocks.
  virtual void post(Task task) = 0;

  /// Returns once every task posted so far has run, or after `seconds`; tells which. The calling thread may run tasks
  /// itself meanwhile, one after the other as always, and does not cut short a task that it has begun. Called inside a
  /// task it returns false at once.
  virtual bool drain(double seconds) = 0;

  /// Runs what is queued as drain() does, ends the worker and joins it. Tasks posted afterwards run at once on the
  /// posting thread, so that nothing is lost while the process ends. Called from the worker itself (a task that ends
  /// the process) it runs what is queued there and then. A worker that hangs in a task is left behind after `seconds`.
  virtual void shutdown(double seconds) = 0;
};

}  // namespace kesu
