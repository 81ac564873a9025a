#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/outbox/LogSegment.h"

namespace kesu {

/// The memory of a segment that this process appends to. All accesses are atomic, so that readers, release marks and
/// touching need no lock. Writes are serialised by the owner. Offsets must be those of entries that fit.
class MappedSegment {
 public:
  /// Maps a file of kSegmentBytes whose blocks are allocated: a store never raises SIGBUS. Null with errno on failure.
  static std::unique_ptr<MappedSegment> map(int fd);

  ~MappedSegment();
  MappedSegment(const MappedSegment&) = delete;
  MappedSegment& operator=(const MappedSegment&) = delete;

  /// Writes an entry behind the last one. Another process that reads the file sees it whole or not at all, whenever
  /// this one dies.
  void write(std::uint32_t offset, const EntryHeader& header, std::string_view bytes);

  /// Copies the entry at `offset`. Any thread.
  EntryHeader read(std::uint32_t offset, std::string& bytes) const;

  /// Sets the mark. Returns false when it was set before. Any thread.
  bool mark(std::uint32_t offset, std::uint32_t mark);

  /// Makes the pages from `from` to `to` present and writable, so that appends to them raise no page fault. May wait
  /// for the disk. Any thread.
  void touch(std::uint32_t from, std::uint32_t to);

 private:
  explicit MappedSegment(char* base) : base_(base) {}

  char* const base_;
};

}  // namespace kesu
