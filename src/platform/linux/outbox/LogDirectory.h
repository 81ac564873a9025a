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
  LogDirectory(std::string path, SegmentAccess access, bool makesHome = true)
      : path_(std::move(path)), access_(access), makesHome_(makesHome) {}

  /// Makes and opens the directory. Returns an error.
  int open();

  /// Locks every log that no process holds. Call open() first. Returns an error where a log may have been missed.
  int takeOver();

  /// Finds the segment files of the logs taken over, in order of log and number. Returns an error where one may have
  /// been missed.
  int findSegments(std::vector<SegmentName>& names) const;

  /// Opens one of them. Null with errno on failure; errno is 0 where it is none: a link, a FIFO, a file with another
  /// header. Removes a file that its owner had no time to begin.
  std::shared_ptr<SegmentFile> openSegment(const SegmentName& name);

  /// Gives this process a log of its own, unless it has one. Opens the directory where that failed before. Returns an
  /// error.
  int beginLog();

  /// The own log, once it was begun.
  std::uint64_t ownId() const { return ownId_; }

  /// Begins one more log, counted among those taken over. Returns an error.
  int beginTakenLog(std::uint64_t& id);

  /// Whether this process has the log.
  bool holds(std::uint64_t logId) const { return (ownLock_ && ownId_ == logId) || taken_.contains(logId); }

  /// Whether what is made here is not where the next start looks for it: the directory or a lock was deleted, or a file
  /// system was mounted over the home.
  bool isGone() const;

  /// The directory that the path leads to now, which open() makes only where those above exist: a home that was removed
  /// is not made again. Touches nothing yet.
  LogDirectory another() const { return {path_, access_, false}; }

  void swap(LogDirectory& other) noexcept;

  /// Removes and unlocks all logs, the own one included. Their segments were removed before.
  void leave();

  /// Creates a segment of a log that this process has. Null with errno on failure.
  std::shared_ptr<SegmentFile> createSegment(const SegmentHeader& header);

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

  /// Locks a new log. Empty with errno on failure.
  UniqueFd lockNew(std::uint64_t& id) const;

  const std::string path_;
  const SegmentAccess access_;
  const bool makesHome_;
  UniqueFd fd_;
  std::uint64_t ownId_ = 0;
  UniqueFd ownLock_;
  std::map<std::uint64_t, UniqueFd> taken_;
  std::atomic<bool> isDirty_{false};
};

}  // namespace kesu
