#pragma once

#include <kesu/platform/AppendLog.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/outbox/LogSegment.h"
#include "platform/linux/outbox/SegmentFile.h"

namespace kesu {

/// Reads the logs of earlier processes as one: entries in the order of their numbers, those of the older log first
/// where numbers are equal. Of several copies of one entry, the first that was not released counts; the others are
/// marked as released. Reads one segment per log at a time. Confined to one thread.
class LogRecovery {
 public:
  using Visit = std::function<void(const AppendLog::Found&)>;

  /// Adds the next segment of its log. `id` is what Entry::segment says.
  void add(std::uint32_t id, std::shared_ptr<SegmentFile> file, const SegmentHeader& header);

  /// Visits all entries, and counts them in their files before. Returns the error of the last segment that could not be
  /// read, or 0; such a segment stays on disk.
  int run(const Visit& visit);

  /// The highest number found; 0 when there was none.
  AppendLog::Sequence highest() const { return highest_; }

 private:
  struct Segment {
    std::uint32_t id = 0;
    std::shared_ptr<SegmentFile> file;
    AppendLog::Sequence first = 0;
  };

  struct Log {
    std::vector<Segment> segments;
    std::size_t at = 0;  // The segment that is read.
    std::string bytes;   // Its content.
    std::optional<SegmentReader> reader;
    std::optional<SegmentReader::Item> item;  // The entry to visit next.
    std::string preamble;

    /// A lower bound of the number of the next entry.
    AppendLog::Sequence sequence() const { return item ? item->sequence : segments[at].first; }
  };

  /// Goes on to the next entry of the present segment, or to the next segment. Returns an error.
  int advance(Log& log);
  int visitItem(const Log& log, const Visit& visit);

  /// Whether this entry was visited before and waits.
  bool isCopy(const SegmentReader::Item& item);

  std::map<std::uint64_t, Log> logs_;
  AppendLog::Sequence highest_ = 0;
  AppendLog::Sequence latest_ = 0;            // The number visited last.
  std::vector<std::uint64_t> latestWaiting_;  // The checksums of the entries of that number that wait.
};

}  // namespace kesu
