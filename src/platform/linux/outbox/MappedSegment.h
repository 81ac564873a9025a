#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/outbox/LogSegment.h"

namespace kesu {

/// The memory of a segment that this process appends to. All accesses are atomic, so that readers, release marks and
/// touching need no lock. Appends are serialised by the owner.
class MappedSegment {
 public:
  /// Maps a file of kSegmentBytes whose blocks are allocated: a store never raises SIGBUS. Null with errno on failure.
  static std::unique_ptr<MappedSegment> map(int fd);

  ~MappedSegment();
  MappedSegment(const MappedSegment&) = delete;
  MappedSegment& operator=(const MappedSegment&) = delete;

  /// Whether an entry of `length` bytes fits behind the last one.
  bool hasRoom(std::size_t length) const { return entryBytes(length) <= kSegmentBytes - position_; }

  /// Where the next entry will lie.
  std::uint32_t position() const { return position_; }

  /// Appends an entry for which there is room; returns its offset. Another process that reads the file sees it whole or
  /// not at all, whenever this one dies.
  std::uint32_t append(const EntryHeader& header, std::string_view bytes);

  /// Copies the entry at `offset`, which append() returned. Any thread.
  EntryHeader read(std::uint32_t offset, std::string& bytes) const;

  /// Sets the mark. Returns false when it was set before. Any thread.
  bool markReleased(std::uint32_t offset);

  /// Makes the pages from `from` to `to` present and writable, so that appends to them raise no page fault. May wait
  /// for the disk. Any thread.
  void touch(std::uint32_t from, std::uint32_t to);

 private:
  explicit MappedSegment(char* base) : base_(base) {}

  char* const base_;
  std::uint32_t position_ = kSegmentHeaderBytes;
};

}  // namespace kesu
