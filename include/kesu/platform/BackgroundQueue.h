#pragma once

#include <kesu/Export.h>

#include <functional>

namespace kesu {

/// A serial low-priority worker. Tasks run in the order in which they were posted, one at a time. A forked child has no
/// worker: tasks are dropped there and nothing waits.
class KESU_API BackgroundQueue {
 public:
  using Task = std::function<void()>;

  virtual ~BackgroundQueue() = default;

  /// Queues a task. Any thread; never blocks.
  virtual void post(Task task) = 0;

  /// Queues a task `seconds` from now, behind those that are queued then. Any thread; never blocks. shutdown() drops
  /// the tasks that are not due, and those posted later: they must only do what the end of the process does anyway.
  virtual void postAfter(double seconds, Task task) = 0;

  /// Waits until every task posted so far has run, but for those that are not due, at most `seconds`. Returns whether
  /// they have. The calling thread may run tasks itself meanwhile, one at a time as always, and finishes a task that it
  /// has begun. Inside a task it returns false at once.
  virtual bool drain(double seconds) = 0;

  /// Drains the queue, then stops and joins the worker. Tasks posted afterwards run synchronously on the posting
  /// thread, so that nothing is lost while the process ends. Called on the worker itself (by a task that ends the
  /// process), it runs the queued tasks there. A worker that hangs in a task is abandoned after `seconds`.
  virtual void shutdown(double seconds) = 0;
};

}  // namespace kesu
