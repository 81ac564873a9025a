#pragma once

#include <kesu/platform/Platform.h>

namespace kesu {

/// Brings what is under way to an end in which no record is lost, on any thread, as often as wanted.
///
/// In this order: background tasks run (they post records); the HTTP client waits for replies that are on their way,
/// then fails the rest; the main loop's completions run, which store the records that did not arrive, together with
/// what they post; the user defaults are synchronized. Only the waiting for replies is cut so that all of it takes
/// about `totalSeconds`: each unanswered record takes its share of that for being stored.
///
/// The HTTP client stays ended: what is sent afterwards is cancelled, and stored by the next pump or the next call.
void endOrderly(Platform& platform, double totalSeconds = 0.045);

/// The same when the process ends: the background queue's thread ends as well, and its later tasks run on the posting
/// threads. For an exit handler, whichever thread it runs on: also inside a task of either queue.
void endAtExit(Platform& platform, double totalSeconds = 0.045);

/// Whether this thread is inside endAtExit(). What the host's handlers use may be destroyed then: what comes is kept,
/// but they are not called any more. Any thread.
bool isEndingAtExit();

}  // namespace kesu
