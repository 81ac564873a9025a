#pragma once

#include <kesu/platform/Platform.h>

namespace kesu {

/// Ends all work so that no record is lost. Any thread, any number of times.
///
/// In this order: background tasks run (they post records); the HTTP client waits for outstanding replies, then fails
/// the rest; the completions run on the main loop, which store the records that were not delivered, and the tasks that
/// they post; the user defaults are synchronized. Only the wait for replies is shortened, so that all of it takes about
/// `totalSeconds`: storing each unanswered record needs its share.
///
/// The HTTP client stays shut down: later requests are cancelled, and stored by the next pump or the next call.
void endOrderly(Platform& platform, double totalSeconds = 0.045);

/// The same when the process ends: the background thread is stopped as well, and later tasks run on the posting
/// threads. For an exit handler on any thread, also inside a task of either queue.
void endAtExit(Platform& platform, double totalSeconds = 0.045);

/// Whether this thread is inside endAtExit(). The objects of the host's handlers may be destroyed then: records are
/// kept, but handlers are not called at exit. Any thread.
bool isEndingAtExit();

}  // namespace kesu
