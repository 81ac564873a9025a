#include "platform/linux/outbox/SegmentFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace kesu {
namespace {

// As many pages as a burst of records fills between two flushes.
constexpr std::uint32_t kRenewedBytes = 16 * 1024;

// What is read of a segment at once: most of those that a start finds have few entries.
constexpr std::size_t kReadBytes = std::size_t{64} * 1024;

// Reads up to `count` bytes, fewer only at the end of the file.
int readAt(int fd, std::uint32_t offset, char* into, std::size_t count, std::size_t& got) {
  got = 0;
  while (got < count) {
    const ssize_t read = ::pread(fd, into + got, count - got, static_cast<off_t>(offset + got));
    if (read == 0) {
      break;
    }
    if (read > 0) {
      got += static_cast<std::size_t>(read);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

int readExactly(int fd, std::uint32_t offset, char* into, std::size_t count) {
  std::size_t got = 0;
  const int error = readAt(fd, offset, into, count, got);
  return error != 0 ? error : got < count ? EBADMSG : 0;
}

int writeAt(int fd, std::uint32_t offset, const char* bytes, std::size_t count) {
  for (std::size_t written = 0; written < count;) {
    const ssize_t now = ::pwrite(fd, bytes + written, count - written, static_cast<off_t>(offset + written));
    if (now >= 0) {
      written += static_cast<std::size_t>(now);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

constexpr std::uint32_t markAt(std::uint32_t offset) {
  return static_cast<std::uint32_t>(offset + offsetof(EntryHeader, mark));
}

constexpr decltype(statfs::f_type) kXfsMagic = 0x58465342;  // Older headers lack it.

// Whether blocks that are allocated are written in place for ever. File systems that write elsewhere may find the disk
// full when a page is stored into that was flushed before, and raise SIGBUS. What an overlay lies on cannot be told.
bool writesInPlace(int fd) {
  struct statfs facts {};
  return ::fstatfs(fd, &facts) == 0 &&
         (facts.f_type == EXT4_SUPER_MAGIC || facts.f_type == kXfsMagic || facts.f_type == TMPFS_MAGIC);
}

// Writes an entry, or nothing at all. One call: it costs more than the copying.
int writeEntryAt(int fd, std::uint32_t offset, const EntryHeader& header, std::string_view bytes) {
  EntryHeader start = header;
  const iovec parts[] = {{&start, sizeof(start)}, {const_cast<char*>(bytes.data()), bytes.size()}};
  ssize_t written = -1;
  do {
    written = ::pwritev(fd, parts, 2, static_cast<off_t>(offset));
  } while (written < 0 && errno == EINTR);
  if (written == static_cast<ssize_t>(sizeof(start) + bytes.size())) {
    return 0;
  }
  const int error = written < 0 ? errno : ENOSPC;
  // A shorter entry must not be followed by the rest of this one.
  return written > 0 && ::ftruncate(fd, static_cast<off_t>(offset)) != 0 ? errno : error;
}

// Allocates the blocks, so that neither a store into the mapping nor writing it back can find the disk full.
int allocate(int fd) {
  int error = EINTR;
  while (error == EINTR) {
    error = ::posix_fallocate(fd, 0, static_cast<off_t>(kSegmentBytes));
  }
  return error;
}

}  // namespace

bool isLinked(int fd) {
  struct stat facts {};
  return ::fstat(fd, &facts) == 0 && facts.st_nlink > 0;
}

std::shared_ptr<SegmentFile> SegmentFile::create(UniqueFd fd, const SegmentHeader& header, SegmentAccess access) {
  const SegmentHeaderBytes start = encodeSegmentHeader(header);
  const bool isMapped =
      access == SegmentAccess::Mapped || (access == SegmentAccess::WhereSafe && writesInPlace(fd.get()));
  int error = isMapped ? allocate(fd.get()) : 0;
  error = error != 0 ? error : writeAt(fd.get(), 0, start.data(), start.size());
  if (error != 0) {
    errno = error;
    return nullptr;
  }
  std::unique_ptr<MappedSegment> mapping = isMapped ? MappedSegment::map(fd.get()) : nullptr;
  if (isMapped && !mapping) {
    return nullptr;
  }
  auto file = std::make_shared<SegmentFile>(std::move(fd), header);
  file->last_ = header.firstSequence - 1;
  file->isDirty_ = true;  // Its numbers must not be given again, even if it stays empty.
  file->writing_ = mapping.get();
  const MutexLock lock(file->mutex_);
  file->mapping_ = std::move(mapping);
  return file;
}

std::shared_ptr<SegmentFile> SegmentFile::again() const {
  UniqueFd fd(::fcntl(fd_.get(), F_DUPFD_CLOEXEC, 0));
  return fd ? std::make_shared<SegmentFile>(std::move(fd), header_) : nullptr;
}

bool SegmentFile::hasName() const {
  return isLinked(fd_.get());
}

std::optional<std::uint32_t> SegmentFile::append(const EntryHeader& header, std::string_view bytes) {
  const std::uint32_t offset = position_;
  if (writing_ != nullptr) {
    writing_->write(offset, header, bytes);
  } else if (const int error = writeEntryAt(fd_.get(), offset, header, bytes)) {
    errno = error;
    return std::nullopt;
  }
  position_ += entryBytes(bytes.size());
  if (header.kind() == EntryKind::Entry) {
    count(header.sequence, header.mark == kReleasedMark);
  }
  isDirty_.store(true, std::memory_order_release);
  return offset;
}

void SegmentFile::count(AppendLog::Sequence sequence, bool isReleased) {
  last_ = std::max(last_, sequence);
  if (!isReleased) {
    waiting_.fetch_add(1, std::memory_order_relaxed);
  }
}

std::shared_ptr<MappedSegment> SegmentFile::mapping() const {
  const MutexLock lock(mutex_);
  return mapping_;
}

int SegmentFile::readAll(std::string& bytes) const {
  int error = 0;
  std::size_t got = kReadBytes;
  std::size_t end = kSegmentHeaderBytes;
  for (bytes.clear(); error == 0 && got == kReadBytes && bytes.size() < kSegmentBytes && goesOn(bytes, end);) {
    const std::size_t had = bytes.size();
    bytes.resize(had + kReadBytes);
    error = readAt(fd_.get(), static_cast<std::uint32_t>(had), bytes.data() + had, kReadBytes, got);
    bytes.resize(had + got);
  }
  return error;
}

int SegmentFile::read(std::uint32_t offset, std::string& bytes) const {
  EntryHeader header;
  if (const auto mapped = mapping()) {
    header = mapped->read(offset, bytes);
  } else {
    char buffer[sizeof(header)];
    if (const int error = readExactly(fd_.get(), offset, buffer, sizeof(buffer))) {
      return error;
    }
    std::memcpy(&header, buffer, sizeof(header));
    bytes.resize(std::min<std::size_t>(header.length(), AppendLog::kLongestEntry));
    const auto start = static_cast<std::uint32_t>(offset + sizeof(header));
    if (const int error = readExactly(fd_.get(), start, bytes.data(), bytes.size())) {
      return error;
    }
  }
  return isWhole(header, bytes) ? 0 : EBADMSG;
}

// A store into the mapping is seen here at once.
int SegmentFile::readMark(std::uint32_t offset, std::uint32_t& mark) const {
  char bytes[sizeof(mark)];
  const int error = readExactly(fd_.get(), markAt(offset), bytes, sizeof(bytes));
  std::memcpy(&mark, bytes, error == 0 ? sizeof(mark) : 0);
  return error;
}

bool SegmentFile::isReleased(std::uint32_t offset) const {
  std::uint32_t mark = 0;
  return readMark(offset, mark) == 0 && mark == kReleasedMark;
}

int SegmentFile::mark(std::uint32_t offset, std::uint32_t mark) {
  bool isFirst = false;
  if (const auto mapped = mapping()) {
    isFirst = mapped->mark(offset, mark);
  } else {
    const MutexLock lock(mutex_);  // Of two threads one is the first.
    std::uint32_t former = 0;
    if (const int error = readMark(offset, former)) {
      return error;
    }
    isFirst = former != mark;
    char bytes[sizeof(mark)];
    std::memcpy(bytes, &mark, sizeof(mark));
    if (const int error = isFirst ? writeAt(fd_.get(), markAt(offset), bytes, sizeof(bytes)) : 0) {
      return error;
    }
  }
  if (isFirst) {
    isDirty_.store(true, std::memory_order_release);
    waiting_.fetch_sub(1, std::memory_order_acq_rel);
  }
  return 0;
}

void SegmentFile::prepare(std::uint32_t from, std::uint32_t to) {
  const auto mapped = mapping();
  if (!mapped) {
    return;
  }
  const std::uint32_t end = std::min(to, kSegmentBytes);
  // Writing back has protected these again. Not more of them: each touch makes a page to write.
  mapped->touch(from, std::min(from + kRenewedBytes, end));
  mapped->touch(std::max(from, prepared_), end);
  prepared_ = std::max(prepared_, end);
}

void SegmentFile::unmap() {
  std::shared_ptr<MappedSegment> last;
  const MutexLock lock(mutex_);
  last.swap(mapping_);
}

int SegmentFile::flush() {
  if (!isDirty_.exchange(false, std::memory_order_acq_rel)) {
    return 0;
  }
  int result = -1;
  do {
    result = ::fdatasync(fd_.get());
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    return 0;
  }
  const int error = errno;
  isDirty_.store(true, std::memory_order_release);
  return error;
}

void SegmentFile::startFlush() const {
  if (isDirty_.load(std::memory_order_acquire)) {
    ::sync_file_range(fd_.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
  }
}

}  // namespace kesu
