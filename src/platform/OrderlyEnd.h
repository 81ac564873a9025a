#pragma once

#include <kesu/platform/Platform.h>

namespace kesu {

/// What else takes part in an end, called on the ending thread: `begin` first, `finish` last. `begin` returns whether
/// everything taken so far is safe, so that nothing has to be waited for. `terminate` is called before them at exit; it
/// reports the termination of a host that has not announced it.
struct EndSteps {
  void (*terminate)();
  bool (*begin)();
  void (*finish)();
};

/// Sets the steps; the facade calls this once, while the library is loaded. `steps` must live for ever.
void setEndSteps(const EndSteps* steps);

/// Ends all work. Any thread, any number of times.
///
/// In this order: background tasks run, which send records, for `totalSeconds` if everything is safe, else until they
/// are done (5 s at most); the HTTP client waits for outstanding replies, then fails the rest, whose records stay in
/// the outbox; completions and the tasks that they post run on this thread; the user defaults are synchronized;
/// `finish` is called. The wait for replies is at most 40 ms, less when `totalSeconds` are over before. Does nothing in
/// a forked child.
///
/// The HTTP client stays shut down: later requests are cancelled.
void endOrderly(Platform& platform, double totalSeconds = 0.045);

/// The same when the process ends: the background thread is stopped as well, and later tasks run on the posting
/// threads. For an exit handler on any thread, also inside a task of either queue; not in a forked child.
void endAtExit(Platform& platform, double totalSeconds = 0.045);

/// Whether this thread is inside endAtExit(). The objects of the host's handlers may be destroyed then: records are
/// kept, but handlers are not called at exit. Any thread.
bool isEndingAtExit();

}  // namespace kesu
