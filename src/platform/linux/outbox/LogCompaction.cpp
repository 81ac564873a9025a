#include "platform/linux/outbox/LogCompaction.h"

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/outbox/LogRecovery.h"

namespace kesu {
namespace {

constexpr std::size_t kMostCompacted = kManySegments / 2;

/// The log that the entries are moved to: the process's own.
class CompactedLog {
 public:
  explicit CompactedLog(LogDirectory& directory) : directory_(directory) {}

  /// Copies an entry. After a failure, which finish() returns, it does nothing.
  void add(const AppendLog::Found& found) {
    const bool isSame = !files_.empty() && preamble_ == found.preamble;
    const std::size_t bytes = entryBytes(found.bytes.size()) + (isSame ? 0 : entryBytes(found.preamble.size()));
    const bool isFull = files_.empty() || bytes > kSegmentBytes - files_.back()->position();
    if (error_ != 0 || (isFull && !startSegment(found.entry.sequence))) {
      return;
    }
    if (preamble_ != found.preamble) {
      preamble_ = found.preamble;
      append(EntryKind::Preamble, found);
    }
    append(EntryKind::Entry, found);
  }

  /// Waits until the disk has it all. `next` is the first number that was not given yet. Returns an error.
  int finish(AppendLog::Sequence next) {
    if (error_ == 0) {
      create(next);  // Stays empty: it keeps the numbers of entries that are gone from being given again.
    }
    for (const auto& file : files_) {
      error_ = error_ != 0 ? error_ : file->flush();
    }
    return error_ != 0 ? error_ : directory_.flush();
  }

  void remove() {
    for (const auto& file : files_) {
      directory_.removeSegment(file->name());
    }
  }

 private:
  bool startSegment(AppendLog::Sequence first) {
    preamble_.clear();
    if (files_.size() == kMostCompacted) {
      error_ = EFBIG;
    } else {
      create(first);
    }
    return error_ == 0;
  }

  void create(AppendLog::Sequence first) {
    if (auto file = directory_.createSegment(static_cast<std::uint32_t>(files_.size() + 1), first)) {
      files_.push_back(std::move(file));
    } else {
      error_ = errno;
    }
  }

  void append(EntryKind kind, const AppendLog::Found& found) {
    const std::string_view bytes = kind == EntryKind::Entry ? found.bytes : found.preamble;
    SegmentFile& file = *files_.back();
    errno = EFBIG;
    if (error_ == 0 && (!file.hasRoom(bytes.size()) ||
                        !file.append(makeEntryHeader(kind, found.entry.sequence, bytes, found.isReleased), bytes))) {
      error_ = errno;
    }
  }

  LogDirectory& directory_;
  std::vector<std::shared_ptr<SegmentFile>> files_;
  std::string preamble_;
  int error_ = 0;
};

}  // namespace

void compactLogs(LogDirectory& directory, AppendLog::Sequence last) {
  std::vector<SegmentName> found;
  if (directory.findSegments(found) != 0 || found.size() <= kManySegments || directory.beginLog() != 0) {
    return;
  }
  LogRecovery recovery;
  std::vector<SegmentName> moved;
  for (const SegmentName& name : found) {
    SegmentHeader header;
    if (auto file = directory.openSegment(name, header)) {
      recovery.add(0, std::move(file), header);
      moved.push_back(name);
    }
  }
  CompactedLog compacted(directory);
  const int error = recovery.run([&](const AppendLog::Found& entry) {
    if (!entry.isReleased || entry.entry.sequence > last) {
      compacted.add(entry);
    }
  });
  if (error != 0 || compacted.finish(recovery.highest() + 1) != 0) {
    compacted.remove();
    return;
  }
  for (const SegmentName& name : moved) {
    directory.removeSegment(name);
  }
  // Before any copy is released: a name that came back later would bring back what was delivered.
  directory.flush();
  directory.leaveOwnLog();
}

}  // namespace kesu
