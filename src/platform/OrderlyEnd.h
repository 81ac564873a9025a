#pragma once

#include <kesu/platform/Platform.h>

namespace kesu {

/// What else takes part in an end, called on the ending thread.
using EndStep = void (*)();

/// Sets what is called first and last in an end; the facade calls this once, while the library is loaded.
void setEndSteps(EndStep begin, EndStep finish);

/// Ends all work. Any thread, any number of times.
///
/// In this order: background tasks run, which send records; the HTTP client waits for outstanding replies, then fails
/// the rest, whose records stay in the outbox; completions and the tasks that they post run on the main loop; the user
/// defaults are synchronized. The wait for replies is at most 40 ms, less when `totalSeconds` are over before.
///
/// The HTTP client stays shut down: later requests are cancelled.
void endOrderly(Platform& platform, double totalSeconds = 0.045);

/// The same when the process ends: the background thread is stopped as well, and later tasks run on the posting
/// threads. For an exit handler on any thread, also inside a task of either queue.
void endAtExit(Platform& platform, double totalSeconds = 0.045);

/// Whether this thread is inside endAtExit(). The objects of the host's handlers may be destroyed then: records are
/// kept, but handlers are not called at exit. Any thread.
bool isEndingAtExit();

}  // namespace kesu
