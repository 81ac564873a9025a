#pragma once

#include <kesu/platform/AppendLog.h>

#include "platform/linux/outbox/LogDirectory.h"

namespace kesu {

/// Most segments of earlier processes that are left as they are. Each start adds one to those that still have an entry.
constexpr std::size_t kManySegments = 8;

/// Moves the entries of the logs taken over into one log, taken over as well, if there are more than kManySegments and
/// their entries fit into half as many; else changes nothing. Leaves out released ones up to and including `last`.
/// Waits for the disk. Whenever the process or the power ends on the way, LogRecovery finds each entry once.
void compactLogs(LogDirectory& directory, AppendLog::Sequence last);

}  // namespace kesu
