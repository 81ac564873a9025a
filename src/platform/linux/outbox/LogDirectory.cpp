#include "platform/linux/outbox/LogDirectory.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/base/PrivateDirectory.h"

namespace kesu {
namespace {

constexpr mode_t kLogFileMode = 0600;
constexpr int kOpenFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

// More than one is needed only where another process takes the fresh lock file for one left behind.
constexpr int kLogAttempts = 8;

constexpr std::size_t kIdDigits = 16;
constexpr std::size_t kNumberDigits = 8;
constexpr std::string_view kLockSuffix = ".lock";
constexpr std::string_view kSegmentSuffix = ".log";

std::string lockName(std::uint64_t logId) {
  char text[32];
  std::snprintf(text, sizeof(text), "%016llx.lock", static_cast<unsigned long long>(logId));
  return text;
}

std::string segmentName(const SegmentName& name) {
  char text[48];
  std::snprintf(text, sizeof(text), "%016llx-%08x.log", static_cast<unsigned long long>(name.logId), name.number);
  return text;
}

template <typename Integer>
bool parseHex(std::string_view digits, Integer& number) {
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  return error == std::errc() && end == digits.data() + digits.size();
}

// The name of a segment or, with number 0, of a lock.
std::optional<SegmentName> parseName(std::string_view file) {
  SegmentName name;
  const std::string_view rest = file.substr(std::min(file.size(), kIdDigits));
  const bool isLock = rest == kLockSuffix;
  const bool isSegment =
      rest.size() == 1 + kNumberDigits + kSegmentSuffix.size() && rest.front() == '-' && rest.ends_with(kSegmentSuffix);
  if ((!isLock && !isSegment) || !parseHex(file.substr(0, kIdDigits), name.logId) ||
      (isSegment && !parseHex(rest.substr(1, kNumberDigits), name.number))) {
    return std::nullopt;
  }
  // The same text again: no capitals, no segment with number 0.
  return file == (isLock ? lockName(name.logId) : segmentName(name)) && isLock == (name.number == 0)
             ? std::optional(name)
             : std::nullopt;
}

constexpr std::uint64_t kLogIdStep = 0x10000;

// Distinct for each process and start; one that is taken already is noticed by its lock file.
std::uint64_t newLogId() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const auto nanoseconds =
      static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000U + static_cast<std::uint64_t>(now.tv_nsec);
  // Sorts by time, up to the lower bits: among equal numbers the older log comes first.
  return (nanoseconds & ~(kLogIdStep - 1)) | (static_cast<std::uint64_t>(::getpid()) & (kLogIdStep - 1));
}

// Whether opening failed because there is no regular file of that name.
bool isNoFile(int error) {
  return error == ENOENT || error == ELOOP || error == EISDIR || error == ENXIO;
}

bool isEmpty(std::string_view bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == '\0'; });
}

}  // namespace

int LogDirectory::open() {
  if (fd_) {
    return 0;
  }
  if (path_.empty()) {
    return ENOENT;
  }
  if (!makesHome_ && ::mkdir(path_.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
    return errno;
  }
  if (const int error = makePrivateDirectory(path_)) {
    return error;
  }
  fd_ = UniqueFd(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  return fd_ ? 0 : errno;
}

bool LogDirectory::isGone() const {
  struct stat opened {};
  struct stat present {};
  if (!fd_ || ::fstat(fd_.get(), &opened) != 0) {
    return false;
  }
  if (::stat(path_.c_str(), &present) != 0) {
    return errno == ENOENT || errno == ENOTDIR;
  }
  const auto isDeleted = [](const UniqueFd& lock) { return lock && !isLinked(lock.get()); };
  return opened.st_dev != present.st_dev || opened.st_ino != present.st_ino || isDeleted(ownLock_) ||
         std::any_of(taken_.begin(), taken_.end(), [&](const auto& log) { return isDeleted(log.second); });
}

void LogDirectory::swap(LogDirectory& other) noexcept {
  std::swap(fd_, other.fd_);
  std::swap(ownId_, other.ownId_);
  std::swap(ownLock_, other.ownLock_);
  taken_.swap(other.taken_);
  isDirty_.store(other.isDirty_.exchange(isDirty_.load(std::memory_order_relaxed), std::memory_order_relaxed),
                 std::memory_order_release);
}

template <typename Visit>
int LogDirectory::enumerate(const Visit& visit) const {
  // A descriptor of its own: a copy of fd_ would share its read position.
  const int fd = ::openat(fd_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const std::unique_ptr<DIR, decltype([](DIR* directory) { ::closedir(directory); })> directory(
      fd >= 0 ? ::fdopendir(fd) : nullptr);
  if (!directory) {
    const int error = errno;
    if (fd >= 0) {
      ::close(fd);
    }
    return error;
  }
  errno = 0;
  while (const dirent* entry = ::readdir(directory.get())) {
    if (const auto name = parseName(entry->d_name)) {
      visit(*name);
    }
    errno = 0;
  }
  return errno;
}

UniqueFd LogDirectory::lock(std::uint64_t logId, int flags) const {
  const std::string name = lockName(logId);
  UniqueFd file(::openat(fd_.get(), name.c_str(), kOpenFlags | O_CREAT | flags, kLogFileMode));
  if (!file || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
    return {};
  }
  // A process that has just removed the log may have removed the name of this file.
  struct stat opened {};
  struct stat named {};
  const bool isNamed = ::fstat(file.get(), &opened) == 0 &&
                       ::fstatat(fd_.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
                       opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
  errno = EAGAIN;
  return isNamed ? std::move(file) : UniqueFd();
}

int LogDirectory::takeOver() {
  std::set<std::uint64_t> ids;
  int error = enumerate([&](const SegmentName& name) { ids.insert(name.logId); });
  for (const std::uint64_t id : ids) {
    if (UniqueFd held = lock(id, 0)) {
      taken_[id] = std::move(held);
    } else if (errno != EAGAIN && !isNoFile(errno)) {  // EAGAIN: another process holds it.
      error = errno;
    }
  }
  return error;
}

int LogDirectory::findSegments(std::vector<SegmentName>& names) const {
  const int error = enumerate([&](const SegmentName& name) {
    if (name.number != 0 && taken_.contains(name.logId)) {
      names.push_back(name);
    }
  });
  std::sort(names.begin(), names.end());
  return error;
}

std::shared_ptr<SegmentFile> LogDirectory::openSegment(const SegmentName& name) {
  UniqueFd fd(::openat(fd_.get(), segmentName(name).c_str(), kOpenFlags));
  if (!fd) {
    errno = isNoFile(errno) ? 0 : errno;
    return nullptr;
  }
  struct stat facts {};
  if (::fstat(fd.get(), &facts) != 0) {
    return nullptr;
  }
  char bytes[kSegmentHeaderBytes] = {};
  const ssize_t got = S_ISREG(facts.st_mode) ? ::pread(fd.get(), bytes, sizeof(bytes), 0) : 0;
  if (got < 0) {
    return nullptr;
  }
  const auto parsed = parseSegmentHeader({bytes, static_cast<std::size_t>(got)});
  if (!parsed && S_ISREG(facts.st_mode) && isEmpty({bytes, sizeof(bytes)})) {
    removeSegment(name);
  }
  if (!parsed || parsed->logId != name.logId || parsed->number != name.number) {
    errno = 0;
    return nullptr;
  }
  return std::make_shared<SegmentFile>(std::move(fd), *parsed);
}

UniqueFd LogDirectory::lockNew(std::uint64_t& id) const {
  UniqueFd held;
  for (int attempt = 0; attempt < kLogAttempts && !held; ++attempt) {
    id = newLogId() + static_cast<std::uint64_t>(attempt) * kLogIdStep;
    held = lock(id, O_EXCL);
    if (!held && errno != EEXIST && errno != EAGAIN) {
      break;
    }
  }
  return held;
}

int LogDirectory::beginLog() {
  if (ownLock_) {
    return 0;
  }
  if (const int error = open()) {
    return error;
  }
  ownLock_ = lockNew(ownId_);
  return ownLock_ ? 0 : errno;
}

int LogDirectory::beginTakenLog(std::uint64_t& id) {
  UniqueFd held = lockNew(id);
  const int error = held ? 0 : errno;
  if (held) {
    taken_[id] = std::move(held);
  }
  return error;
}

std::shared_ptr<SegmentFile> LogDirectory::createSegment(const SegmentHeader& header) {
  const SegmentName name{header.logId, header.number};
  UniqueFd fd(::openat(fd_.get(), segmentName(name).c_str(), kOpenFlags | O_CREAT | O_EXCL, kLogFileMode));
  if (!fd) {
    return nullptr;
  }
  std::shared_ptr<SegmentFile> file = SegmentFile::create(std::move(fd), header, access_);
  if (!file) {
    const int error = errno;
    removeSegment(name);
    errno = error;
    return nullptr;
  }
  isDirty_.store(true, std::memory_order_release);
  return file;
}

void LogDirectory::removeSegment(const SegmentName& name) {
  ::unlinkat(fd_.get(), segmentName(name).c_str(), 0);
  isDirty_.store(true, std::memory_order_release);
}

void LogDirectory::keepLogs(const std::set<std::uint64_t>& logs) {
  for (auto log = taken_.begin(); log != taken_.end();) {
    if (logs.contains(log->first)) {
      ++log;
    } else {
      ::unlinkat(fd_.get(), lockName(log->first).c_str(), 0);
      log = taken_.erase(log);
    }
  }
}

void LogDirectory::leave() {
  taken_[ownId_] = std::move(ownLock_);
  keepLogs({});
}

int LogDirectory::flush() {
  if (!isDirty_.exchange(false, std::memory_order_acq_rel) || ::fsync(fd_.get()) == 0) {
    return 0;
  }
  const int error = errno;
  // Some file systems do not flush directories; nothing would be gained by asking again.
  isDirty_.store(error != EINVAL, std::memory_order_release);
  return error == EINVAL ? 0 : error;
}

}  // namespace kesu
