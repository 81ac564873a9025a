#pragma once

#include <atomic>
#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "foundation/Mutex.h"
#include "platform/linux/base/UniqueFd.h"
#include "platform/linux/outbox/LogSegment.h"
#include "platform/linux/outbox/MappedSegment.h"

namespace kesu {

/// Which segment of which log.
struct SegmentName {
  std::uint64_t logId = 0;
  std::uint32_t number = 0;
  friend auto operator<=>(const SegmentName&, const SegmentName&) = default;
};

/// Whether an open file was not deleted.
bool isLinked(int fd);

/// How segments that this process appends to are written.
enum class SegmentAccess {
  WhereSafe,   ///< Mapped on file systems that keep allocated blocks where they are, else by system calls.
  Mapped,      ///< Mapped.
  SystemCalls  ///< By system calls.
};

/// One open segment: where that is safe mapped while this process appends to it, otherwise accessed by system calls, so
/// that a failing disk is an error and no signal. Results called "error" are 0 or an error number. Any thread, but for
/// what says otherwise.
class SegmentFile {
 public:
  /// Opens a segment of an earlier process.
  SegmentFile(UniqueFd fd, const SegmentHeader& header) : header_(header), fd_(std::move(fd)) {}

  /// Makes `fd`, an empty file, a segment to append to. Null with errno on failure.
  static std::shared_ptr<SegmentFile> create(UniqueFd fd, const SegmentHeader& header, SegmentAccess access);

  /// Opens the same file once more, to read it with counts of its own. Null with errno on failure.
  std::shared_ptr<SegmentFile> again() const;

  const SegmentHeader& header() const { return header_; }
  SegmentName name() const { return {header_.logId, header_.number}; }

  /// Whether the file was not deleted.
  bool hasName() const;

  /// Appending; serialised by the owner, and only until unmap(). An entry for which there is room; returns its offset,
  /// or nothing with errno when the disk does not take it.
  bool hasRoom(std::size_t length) const { return entryBytes(length) <= kSegmentBytes - position_; }
  std::uint32_t position() const { return position_; }
  std::optional<std::uint32_t> append(const EntryHeader& header, std::string_view bytes);

  /// Counts an entry of an earlier process. Serialised by the owner.
  void count(AppendLog::Sequence sequence, bool isReleased);

  /// Keeps the file as long as this process lives.
  void pin() { waiting_.fetch_add(1, std::memory_order_relaxed); }

  /// Whether no entry waits any more and no number is above `settled`. Serialised with append().
  bool isDone(AppendLog::Sequence settled) const {
    return waiting_.load(std::memory_order_acquire) == 0 && last_ <= settled;
  }

  /// Reads the file up to the end of its entries, perhaps some bytes more. Returns an error.
  int readAll(std::string& bytes) const;

  /// Reads one entry. Returns an error; EBADMSG for an entry that is damaged.
  int read(std::uint32_t offset, std::string& bytes) const;

  /// Marks an entry that waits, once. Returns an error.
  int release(std::uint32_t offset) { return mark(offset, kReleasedMark); }
  int markCopy(std::uint32_t offset) { return mark(offset, kCopyMark); }

  /// Whether it is marked. False when that cannot be read.
  bool isReleased(std::uint32_t offset) const;

  /// Makes the pages between `from`, where the next entry will lie, and `to` ready for appends. May wait for the disk.
  /// One thread at a time.
  void prepare(std::uint32_t from, std::uint32_t to);

  /// Gives the memory back, once nothing is appended any more.
  void unmap();

  /// Waits until the disk has everything; without a system call when it has. Returns an error.
  int flush();

  /// Has the kernel begin to write, without waiting.
  void startFlush() const;

 private:
  std::shared_ptr<MappedSegment> mapping() const;
  int mark(std::uint32_t offset, std::uint32_t mark);
  int readMark(std::uint32_t offset, std::uint32_t& mark) const;

  const SegmentHeader header_;
  const UniqueFd fd_;
  mutable Mutex mutex_;
  std::shared_ptr<MappedSegment> mapping_ KESU_GUARDED_BY(mutex_);
  MappedSegment* writing_ = nullptr;  // The same, for appends: they take one mutex less.
  std::uint32_t position_ = kSegmentHeaderBytes;
  AppendLog::Sequence last_ = 0;
  std::uint32_t prepared_ = 0;  // Up to here every page was touched once.
  std::atomic<std::uint32_t> waiting_{0};
  std::atomic<bool> isDirty_{false};
};

}  // namespace kesu
