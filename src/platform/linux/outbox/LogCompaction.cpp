#include "platform/linux/outbox/LogCompaction.h"

#include <cerrno>
#include <memory>
#include <string>

#include "platform/linux/outbox/LogRecovery.h"

namespace kesu {
namespace {

/// The log that entries are moved to.
class CompactedLog {
 public:
  CompactedLog(LogDirectory& directory, std::size_t most, const std::function<std::uint32_t()>& newId,
               MovedEntries& moved)
      : directory_(directory), most_(most), newId_(newId), moved_(moved), error_(directory.beginTakenLog(id_)) {}

  /// Copies an entry. After a failure, which finish() returns, it does nothing.
  void add(const AppendLog::Found& found) {
    const bool isSame = isBegun() && preamble_ == found.preamble;
    const std::size_t bytes = entryBytes(found.bytes.size()) + (isSame ? 0 : entryBytes(found.preamble.size()));
    const bool isFull = !isBegun() || bytes > kSegmentBytes - moved_.segments.back().file->position();
    if (error_ != 0 || (isFull && !startSegment(found.entry.sequence))) {
      return;
    }
    if (preamble_ != found.preamble) {
      preamble_ = found.preamble;
      append(EntryKind::Preamble, found);
    }
    append(EntryKind::Entry, found);
  }

  /// Waits until the disk has it all. Returns an error.
  int finish() {
    for (const HeldSegment& segment : moved_.segments) {
      error_ = error_ != 0 ? error_ : segment.file->flush();
    }
    return error_ != 0 ? error_ : directory_.flush();
  }

  void remove() {
    for (const HeldSegment& segment : moved_.segments) {
      directory_.removeSegment(segment.file->name());
    }
    moved_ = {};
  }

 private:
  bool isBegun() const { return !moved_.segments.empty(); }

  bool startSegment(AppendLog::Sequence first) {
    preamble_.clear();
    if (moved_.segments.size() == most_) {
      error_ = EFBIG;
      return false;
    }
    const std::uint32_t number = newId_();
    if (auto file = directory_.createSegment({id_, number, first})) {
      moved_.segments.push_back({number, std::move(file)});
    } else {
      error_ = errno;
    }
    return error_ == 0;
  }

  void append(EntryKind kind, const AppendLog::Found& found) {
    const std::string_view bytes = kind == EntryKind::Entry ? found.bytes : found.preamble;
    const HeldSegment& segment = moved_.segments.back();
    errno = EFBIG;
    const bool hasRoom = error_ == 0 && segment.file->hasRoom(bytes.size());
    const auto offset =
        hasRoom ? segment.file->append(makeEntryHeader(kind, found.entry.sequence, bytes, found.isReleased), bytes)
                : std::nullopt;
    if (!offset) {
      error_ = error_ != 0 ? error_ : errno;
    } else if (kind == EntryKind::Entry && !found.isReleased) {
      moved_.places.push_back({found.entry, {found.entry.sequence, segment.id, *offset}});
    }
  }

  LogDirectory& directory_;
  const std::size_t most_;
  const std::function<std::uint32_t()>& newId_;
  MovedEntries& moved_;
  std::string preamble_;
  std::uint64_t id_ = 0;
  int error_ = 0;
};

}  // namespace

int moveEntries(LogDirectory& directory, const std::vector<HeldSegment>& from, AppendLog::Sequence settled,
                std::size_t most, const std::function<std::uint32_t()>& newId, MovedEntries& moved) {
  LogRecovery recovery;
  for (const HeldSegment& segment : from) {
    auto file = segment.file->again();
    if (!file) {
      return errno;
    }
    recovery.add(segment.id, std::move(file));
  }
  CompactedLog compacted(directory, most, newId, moved);
  int error = recovery.run([&](const AppendLog::Found& entry) {
    if (!entry.isReleased || entry.entry.sequence > settled) {
      compacted.add(entry);
    }
  });
  error = error != 0 ? error : compacted.finish();
  if (error != 0) {
    compacted.remove();
  }
  return error;
}

}  // namespace kesu
