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
/// where numbers are equal. Copies of one entry, which moving leaves behind when the process ends on the way, have
/// equal numbers and checksums: it is visited once, as released if any copy is, and copies that wait are marked as
/// such. Reads one segment per log at a time. Confined to one thread.
class LogRecovery {
 public:
  using Visit = std::function<void(const AppendLog::Found&)>;

  /// Adds the next segment of its log. `id` is what Entry::segment says.
  void add(std::uint32_t id, std::shared_ptr<SegmentFile> file);

  /// Visits all entries, and counts them in their files before. Returns the error of the last segment that could not be
  /// read, or 0; such a segment stays on disk.
  int run(const Visit& visit);

  /// The highest number found; 0 when there was none.
  AppendLog::Sequence highest() const { return highest_; }

 private:
  struct Segment {
    std::uint32_t id = 0;
    std::shared_ptr<SegmentFile> file;
  };

  struct Log {
    std::vector<Segment> segments;
    std::size_t at = 0;  // The segment that is read.
    std::string bytes;   // Its content.
    std::optional<SegmentReader> reader;
    std::optional<SegmentReader::Item> item;  // The entry to visit next.
    std::string preamble;

    /// A lower bound of the number of the next entry.
    AppendLog::Sequence sequence() const { return item ? item->sequence : segments[at].file->header().firstSequence; }
  };

  /// An entry that was read.
  struct Held {
    Segment segment;
    SegmentReader::Item item;  // Its view of the bytes is not valid any more.
    std::string preamble;
    std::string bytes;
  };

  /// Goes on to the next entry of the present segment, or to the next segment. Returns an error.
  int advance(Log& log);

  /// Counts the present entry and takes it out of its log, until all of its number are there.
  void hold(const Log& log);

  /// Visits the entries of one number. Returns an error.
  int visitEquals(const Visit& visit);

  std::map<std::uint64_t, Log> logs_;
  AppendLog::Sequence highest_ = 0;
  std::vector<Held> equals_;
};

}  // namespace kesu
