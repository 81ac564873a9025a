#include "platform/linux/outbox/LinuxAppendLog.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "platform/ServiceLog.h"
#include "platform/linux/outbox/LogCompaction.h"
#include "platform/linux/outbox/LogRecovery.h"

namespace kesu {
namespace {

// What prepare() keeps ready: some 800 records. A segment with less room needs a successor.
constexpr std::uint32_t kAheadBytes = 256 * 1024;

static_assert(kSegmentHeaderBytes + entryBytes(AppendLog::kLongestPreamble) + entryBytes(AppendLog::kLongestEntry) <=
                  kSegmentBytes,
              "an entry fits into a new segment whatever its preamble");

// Full segments that stay mapped: some 10,000 records.
constexpr std::size_t kMostFullMapped = 4;

// Microseconds since 1970: nobody appends more than one in each, so that a later process is ahead of an earlier one.
AppendLog::Sequence clockSequence() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<AppendLog::Sequence>(
      std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::microseconds>(now).count(), 0));
}

void keepError(int& first, int next) {
  first = first != 0 ? first : next;
}

}  // namespace

void LinuxAppendLog::recover(std::optional<Sequence> last, const std::function<void(const Found&)>& visit) {
  if (isInForkedChild()) {
    return;
  }
  const MutexLock background(background_);
  LogRecovery recovery;
  const bool isOpen = directory_.open() == 0;
  int withheld = 0;
  if (isOpen) {
    withheld = directory_.takeOver();
    std::vector<SegmentName> names;
    keepError(withheld, directory_.findSegments(names));
    for (const SegmentName& name : names) {
      if (auto file = directory_.openSegment(name)) {
        const MutexLock lock(mutex_);
        const HeldSegment segment{held_.newId(), std::move(file)};
        held_.add(segment);
        recovery.add(segment.id, segment.file);
      } else {
        keepError(withheld, errno);
      }
    }
    keepError(withheld, recovery.run(visit));
    warnings_.failed(OutboxWarnings::Kind::Read, withheld);
  }
  {
    const bool isKnown = last && isOpen && withheld == 0;
    const MutexLock lock(mutex_);
    next_ = std::max({last.value_or(0), recovery.highest(), isKnown ? 0 : clockSequence()}) + 1;
  }
  const int error = makeSpare();
  {
    const MutexLock lock(mutex_);
    roomError_ = error;
  }
  keepLogs();
  touchAhead();
  isRunningLow_.store(allSegments().size() > kManySegments, std::memory_order_relaxed);  // For compact().
}

void LinuxAppendLog::continueBehind(Sequence sequence) {
  if (!isInForkedChild()) {
    const MutexLock lock(mutex_);
    next_ = next_ == 0 ? 0 : std::max(next_, sequence + 1);
  }
}

std::optional<AppendLog::Entry> LinuxAppendLog::append(std::string_view bytes, bool isReleased) {
  if (isInForkedChild() || bytes.size() > kLongestEntry) {
    return std::nullopt;
  }
  int error = 0;
  {
    const MutexLock lock(mutex_);
    if (const auto entry = appendLocked(bytes, isReleased)) {
      return entry;
    }
    error = roomError_;
  }
  warnings_.failed(OutboxWarnings::Kind::Room, error);
  return std::nullopt;
}

std::optional<AppendLog::Entry> LinuxAppendLog::appendLocked(std::string_view bytes, bool isReleased) {
  if (next_ == 0 || roomError_ != 0 || (!hasRoom(bytes.size()) && !startSegment())) {
    return std::nullopt;
  }
  const auto offset = current_.file->append(makeEntryHeader(EntryKind::Entry, next_, bytes, isReleased), bytes);
  if (!offset) {
    roomError_ = errno;
    return std::nullopt;
  }
  if (*offset >= lowMark_) {
    isRunningLow_.store(true, std::memory_order_relaxed);
  }
  return Entry{next_++, current_.id, *offset};
}

void LinuxAppendLog::setPreamble(std::string_view bytes) {
  if (isInForkedChild()) {
    return;
  }
  const MutexLock lock(mutex_);
  const std::string_view kept = bytes.size() > kLongestPreamble ? std::string_view() : bytes;
  if (preamble_ == kept) {
    return;
  }
  preamble_ = kept;
  if (current_.file && !(hasRoom(kept.size()) && appendPreamble(*current_.file))) {
    current_.file.reset();  // Nothing may be appended behind the old preamble: the next entry begins a segment.
  }
}

bool LinuxAppendLog::appendPreamble(SegmentFile& file) {
  return file.append(makeEntryHeader(EntryKind::Preamble, next_, preamble_, false), preamble_).has_value();
}

bool LinuxAppendLog::startSegment() {
  if (!spare_.file) {
    roomError_ = createLate();
  }
  if (spare_.file && !preamble_.empty() && !appendPreamble(*spare_.file)) {
    roomError_ = errno;
  }
  if (roomError_ != 0) {
    return false;
  }
  current_ = std::exchange(spare_, {});
  // The mark lies in this one if it was made ready in time.
  lowMark_ = lowMark_ > kSegmentBytes ? lowMark_ - kSegmentBytes : 0;
  warnings_.worked(OutboxWarnings::Kind::Room);
  return true;
}

int LinuxAppendLog::createLate() {
  if (held_.size() >= kMostSegments) {
    return OutboxWarnings::kTooManySegments;
  }
  const std::uint32_t id = held_.newId();
  auto file = directory_.createSegment({directory_.ownId(), id, next_});
  if (!file) {
    return errno;
  }
  spare_ = {id, std::move(file)};
  held_.add(spare_);
  return 0;
}

std::vector<HeldSegment> LinuxAppendLog::allSegments() {
  const MutexLock lock(mutex_);
  return held_.all();
}

std::pair<std::shared_ptr<SegmentFile>, std::uint32_t> LinuxAppendLog::find(const Entry& entry) {
  if (entry.offset > kSegmentBytes - sizeof(EntryHeader) || entry.offset % alignof(std::uint64_t) != 0) {
    return {};
  }
  const MutexLock lock(mutex_);
  return held_.find(entry);
}

bool LinuxAppendLog::read(const Entry& entry, std::string& bytes) {
  if (isInForkedChild()) {
    return false;
  }
  const auto [file, offset] = find(entry);
  const int error = file ? file->read(offset, bytes) : ENOENT;
  if (file) {
    warnings_.failed(OutboxWarnings::Kind::Read, error);
  }
  return error == 0;
}

void LinuxAppendLog::release(const Entry& entry) {
  if (isInForkedChild()) {
    return;
  }
  std::shared_ptr<SegmentFile> marked;
  for (auto [file, offset] = find(entry); file && file != marked; std::tie(file, offset) = find(entry)) {
    warnings_.failed(OutboxWarnings::Kind::Mark, file->release(offset));
    marked = file;  // Unless move() has just copied the entry.
  }
}

void LinuxAppendLog::settle(Sequence sequence) {
  if (!isInForkedChild()) {
    const MutexLock lock(mutex_);
    settled_ = std::max(settled_, sequence);
  }
}

void LinuxAppendLog::prepare() {
  if (isInForkedChild()) {
    return;
  }
  const MutexLock background(background_);
  int error = followHome();
  if (error == 0) {
    removeDone();
    compact();
    error = makeSpare();
    keepLogs();
  }
  {
    const MutexLock lock(mutex_);
    roomError_ = current_.file || spare_.file ? 0 : error;
  }
  touchAhead();
}

// What is appended from now on must be where the next start looks for it, and so must what waits.
int LinuxAppendLog::followHome() {
  LogDirectory former = directory_.another();
  if (directory_.isGone()) {  // Not before recover(), which opens it.
    const int error = former.beginLog();
    const MutexLock lock(mutex_);
    current_ = {};
    spare_ = {};
    if (error != 0) {
      return error;
    }
    directory_.swap(former);
  }
  std::vector<HeldSegment> lost = allSegments();
  std::erase_if(lost, [this](const HeldSegment& segment) {
    return directory_.holds(segment.file->name().logId) && segment.file->hasName();
  });
  if (lost.empty()) {
    return 0;
  }
  {
    const MutexLock lock(mutex_);
    for (const HeldSegment& segment : lost) {
      current_ = segment.file == current_.file ? HeldSegment() : current_;
      spare_ = segment.file == spare_.file ? HeldSegment() : spare_;
    }
  }
  if (const int error = move(lost, kMostSegments, former)) {
    warnings_.failed(OutboxWarnings::Kind::Room, error);
  } else {
    former.leave();
    serviceLog(0, "Files of the outbox were removed or hidden. What waits is written again.");
  }
  return 0;
}

int LinuxAppendLog::move(const std::vector<HeldSegment>& from, std::size_t most, LogDirectory& former) {
  MovedEntries moved;
  Sequence settled = 0;
  {
    const MutexLock lock(mutex_);
    settled = settled_;
  }
  const auto newId = [this] {
    const MutexLock lock(mutex_);
    return held_.newId();
  };
  if (const int error = moveEntries(directory_, from, settled, most, newId, moved)) {
    return error;
  }
  {
    const MutexLock lock(mutex_);
    for (const HeldSegment& segment : moved.segments) {
      held_.add(segment);
    }
    for (const auto& [before, now] : moved.places) {
      held_.noteMove(before, now);
    }
    for (const HeldSegment& segment : from) {
      held_.removeMoved(segment.id);
    }
  }
  std::map<std::uint32_t, std::shared_ptr<SegmentFile>> files;
  for (const HeldSegment& segment : from) {
    files[segment.id] = segment.file;
    former.removeSegment(segment.file->name());
  }
  for (const auto& [before, now] : moved.places) {  // What was released while it was copied.
    if (files[before.segment]->isReleased(before.offset)) {
      release(now);
    }
  }
  return 0;
}

// So that a set which is switched off again and again before the last few records are delivered does not collect
// segments. Once: what later starts find is their business.
void LinuxAppendLog::compact() {
  std::vector<HeldSegment> found = allSegments();
  std::erase_if(found, [this](const HeldSegment& segment) { return segment.file->name().logId == directory_.ownId(); });
  if (found.size() > kManySegments && !std::exchange(isCompacted_, true)) {
    move(found, kManySegments / 2, directory_);
  }
}

void LinuxAppendLog::removeDone() {
  std::vector<HeldSegment> done;
  std::vector<HeldSegment> full;
  {
    const MutexLock lock(mutex_);
    const bool isStuck = roomError_ != 0 || (!spare_.file && !hasRoom(kAheadBytes));
    if (isStuck && current_.file && current_.file->isDone(settled_)) {
      current_.file.reset();  // There may be no room for its successor: it makes some itself.
    }
    for (HeldSegment& segment : held_.all()) {
      if (segment.file != current_.file && segment.file != spare_.file) {
        (segment.file->isDone(settled_) ? done : full).push_back(std::move(segment));
      }
    }
  }
  // The oldest are read and marked next: without system calls, while nobody posts far ahead of the network.
  for (std::size_t place = kMostFullMapped; place < full.size(); ++place) {
    full[place].file->unmap();
  }
  if (done.empty()) {
    return;
  }
  // Marks first: a name that comes back after a loss of power must not bring back what was delivered. And the numbers
  // of the removed entries must not be given again: the present segment knows them.
  flush();
  {
    const MutexLock lock(mutex_);
    for (const HeldSegment& segment : done) {
      held_.remove(segment.id);
    }
  }
  for (const HeldSegment& segment : done) {
    directory_.removeSegment(segment.file->name());
  }
}

void LinuxAppendLog::keepLogs() {
  std::set<std::uint64_t> logs;
  {
    const MutexLock lock(mutex_);
    logs = held_.logIds();
  }
  directory_.keepLogs(logs);
}

int LinuxAppendLog::makeSpare() {
  HeldSegment made;
  Sequence first = 0;
  {
    const MutexLock lock(mutex_);
    if (next_ == 0 || spare_.file || hasRoom(kSegmentBytes / 2)) {
      return 0;
    }
    if (held_.size() >= kMostSegments) {
      return OutboxWarnings::kTooManySegments;
    }
    made.id = held_.newId();
    first = next_;
  }
  if (const int error = directory_.beginLog()) {
    return error;
  }
  made.file = directory_.createSegment({directory_.ownId(), made.id, first});
  if (!made.file) {
    return errno;
  }
  {
    const MutexLock lock(mutex_);
    // Segments are filled in the order of their numbers, also when an append did not wait for this one.
    if (made.id > current_.id && !spare_.file) {
      spare_ = made;
      held_.add(made);
      return 0;
    }
  }
  directory_.removeSegment(made.file->name());
  return 0;
}

void LinuxAppendLog::touchAhead() {
  HeldSegment current;
  HeldSegment spare;
  std::uint32_t from = 0;
  {
    const MutexLock lock(mutex_);
    current = current_;
    spare = spare_;
    from = current.file ? current.file->position() : kSegmentBytes;
    lowMark_ = from + kAheadBytes / 2;
    isRunningLow_.store(false, std::memory_order_relaxed);
  }
  const std::uint32_t end = from + kAheadBytes;
  if (current.file) {
    current.file->prepare(from, end);
  }
  if (spare.file && end > kSegmentBytes) {
    spare.file->prepare(0, end - kSegmentBytes);
  }
}

void LinuxAppendLog::flush() {
  if (isInForkedChild()) {
    return;
  }
  int error = directory_.flush();
  for (const HeldSegment& segment : allSegments()) {
    const int now = segment.file->flush();
    error = now != 0 ? now : error;
  }
  warnings_.failed(OutboxWarnings::Kind::Flush, error);
  if (error == 0) {
    warnings_.worked(OutboxWarnings::Kind::Flush);
  }
}

void LinuxAppendLog::startFlush() {
  if (isInForkedChild()) {
    return;
  }
  for (const HeldSegment& segment : allSegments()) {
    segment.file->startFlush();
  }
}

}  // namespace kesu
