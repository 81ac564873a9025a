#pragma once

#include <array>
#include <atomic>

namespace kesu {

/// What is logged about the disk below an append log: each kind of trouble once until it is over, so that a disk that
/// stays full does not fill the log as well. Any thread; never with the mutex of append() locked, because the host's
/// log sink may take its time.
class OutboxWarnings {
 public:
  enum class Kind {
    Room,   ///< New entries are not kept.
    Mark,   ///< A release was not noted.
    Flush,  ///< The disk did not take what was written.
    Read    ///< Entries cannot be read.
  };

  /// The error number that stands for the limit of segments.
  static constexpr int kTooManySegments = -1;

  /// Logs the trouble, unless that was done since it began. Does nothing when `error` is 0.
  void failed(Kind kind, int error);

  /// Notes that this kind of trouble is over.
  void worked(Kind kind) { isTold(kind).store(false, std::memory_order_relaxed); }

 private:
  std::atomic<bool>& isTold(Kind kind) { return told_[static_cast<std::size_t>(kind)]; }

  std::array<std::atomic<bool>, 4> told_{};
};

}  // namespace kesu
