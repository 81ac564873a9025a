#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/outbox/SegmentFile.h"

namespace kesu {

/// The directory of all logs of a home. A log is the set of segment files with one identifier, held by a lock on a file
/// of that identifier: its owner appends to it, or, when that is gone, whoever has the lock reads and removes it.
///
/// Results called "error" are 0 or an error number. Confined to the thread that recovers or prepares, but for
/// createSegment(), which any thread may call once beginLog() has succeeded, and flush().
class LogDirectory {
 public:
  /// Nothing is touched yet. With an empty path every operation fails. `access` is for what createSegment() makes.
  LogDirectory(std::string path, SegmentAccess access) : path_(std::move(path)), access_(access) {}

  /// Makes and opens the directory. Returns an error.
  int open();

  /// Locks every log that no process holds. Call open() first. Returns an error where a log may have been missed.
  int takeOver();

  /// Finds the segment files of the logs taken over, in order of log and number. Returns an error where one may have
  /// been missed.
  int findSegments(std::vector<SegmentName>& names) const;

  /// Opens one of them. Null with errno on failure; errno is 0 where it is none: a link, a FIFO, a file with another
  /// header. Removes a file that its owner had no time to begin.
  std::shared_ptr<SegmentFile> openSegment(const SegmentName& name, SegmentHeader& header);

  /// Gives this process a log of its own, unless it has one. Opens the directory where that failed before. Returns an
  /// error.
  int beginLog();

  /// Whether the path leads to another directory now: a file system was mounted over the home.
  bool isElsewhere() const;

  /// Begins a log in that one. The segments of the former log stay open; its names are left behind. Returns an error.
  int beginLogElsewhere();

  /// Creates a segment of the own log. Null with errno on failure.
  std::shared_ptr<SegmentFile> createSegment(std::uint32_t number, AppendLog::Sequence first);

  /// Counts the own log among those taken over; the next beginLog() begins another.
  void leaveOwnLog() { taken_[ownId_] = std::move(ownLock_); }

  void removeSegment(const SegmentName& name);

  /// Removes and unlocks the logs taken over that are not in `logs`.
  void keepLogs(const std::set<std::uint64_t>& logs);

  /// Waits until the disk knows which segments there are; without a system call when it has. Returns an error.
  int flush();

 private:
  /// Calls `visit(SegmentName)` for each file of a log; a lock has number 0. Returns an error.
  template <typename Visit>
  int enumerate(const Visit& visit) const;

  /// Locks a log; empty when another process holds it, with errno.
  UniqueFd lock(std::uint64_t logId, int flags) const;

  const std::string path_;
  const SegmentAccess access_;
  UniqueFd fd_;
  std::uint64_t ownId_ = 0;
  UniqueFd ownLock_;
  std::map<std::uint64_t, UniqueFd> taken_;
  std::atomic<bool> isDirty_{false};
};

}  // namespace kesu
