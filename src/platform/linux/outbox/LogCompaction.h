#pragma once

#include <kesu/platform/AppendLog.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "platform/linux/outbox/HeldSegments.h"
#include "platform/linux/outbox/LogDirectory.h"

namespace kesu {

/// Most segments of earlier processes that are left as they are. Each start adds one to those that still have an entry.
constexpr std::size_t kManySegments = 8;

/// Copies of entries, and where each one that waits was before.
struct MovedEntries {
  std::vector<HeldSegment> segments;
  std::vector<std::pair<AppendLog::Entry, AppendLog::Entry>> places;
};

/// Copies what these segments have into one log of `directory`, counted among those taken over, in the order of
/// numbers. Leaves out released entries up to and including `settled`. Waits until the disk has the copies. Returns an
/// error, and leaves nothing behind then: EFBIG where more than `most` segments would be needed. `newId` is that of
/// HeldSegments.
///
/// The caller removes the originals. Whenever the process or the power ends on the way, LogRecovery finds each entry
/// once.
int moveEntries(LogDirectory& directory, const std::vector<HeldSegment>& from, AppendLog::Sequence settled,
                std::size_t most, const std::function<std::uint32_t()>& newId, MovedEntries& moved);

}  // namespace kesu
