#include "platform/linux/files/LinuxFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/ServiceLog.h"
#include "platform/linux/base/PrivateDirectory.h"
#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

constexpr mode_t kFileMode = 0600;
constexpr int kNameAttempts = 100;
constexpr std::string_view kTemporaryPrefix = ".kesu-";
constexpr std::string_view kTemporarySuffix = ".tmp";
constexpr std::string_view kStoreSuffix = ".kesuCache";  // Files of undelivered records.

using Directory = std::unique_ptr<DIR, decltype([](DIR* directory) { ::closedir(directory); })>;
using Visitor = std::function<bool(const DirectoryEntry&)>;

FileStatus statusOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return FileStatus::NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return FileStatus::NotAllowed;
    case ENOSPC:
    case EDQUOT:
      return FileStatus::NoSpace;
    case EEXIST:
      return FileStatus::Exists;
    case EISDIR:
    case ELOOP:
    case ENXIO:
      return FileStatus::NotRegular;
    default:
      return FileStatus::OtherFailure;
  }
}

FileResult failure(int error) {
  return {statusOf(error), std::generic_category().message(error)};
}

FileResult forkedChild() {
  return {FileStatus::OtherFailure, "Not allowed in a forked child process"};
}

bool hasNul(const std::string& path) {
  return path.find('\0') != std::string::npos;
}

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

const char* nameIn(const std::string& path) {
  return path.c_str() + path.find_last_of('/') + 1;
}

// The directory itself: enumerate() does not enter a link either, and whatever is written must be found again.
UniqueFd openParent(const std::string& directory) {
  return UniqueFd(::open(directory.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// 0, or the error number.
int writeWhole(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// Reads to the end of the file or to one byte past the limit, whichever comes first. The size is only a hint.
int readWhole(int fd, std::size_t sizeHint, std::size_t limit, std::string& bytes) {
  bytes.resize(std::min(sizeHint, limit) + 1);
  std::size_t filled = 0;
  while (filled <= limit) {
    if (filled == bytes.size()) {
      bytes.resize(std::min(filled * 2, limit + 1));
    }
    const ssize_t got = ::read(fd, bytes.data() + filled, bytes.size() - filled);
    if (got == 0) {
      break;
    }
    if (got > 0) {
      filled += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  bytes.resize(filled);
  return 0;
}

bool isTemporaryName(std::string_view name) {
  return name.starts_with(kTemporaryPrefix) && name.ends_with(kTemporarySuffix);
}

void removeIfStale(int directory, const char* name) {
  struct stat info {};
  if (::fstatat(directory, name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(info.st_mode) &&
      info.st_mtime < std::time(nullptr) - LinuxFiles::kStaleAgeSeconds) {
    ::unlinkat(directory, name, 0);
  }
}

Directory openDirectory(int parent, const char* name) {
  const int fd = ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  Directory directory(fd >= 0 ? ::fdopendir(fd) : nullptr);
  if (fd >= 0 && !directory) {
    ::close(fd);
  }
  return directory;
}

// DT_REG, DT_DIR or something else. Some file systems leave the question to fstatat().
unsigned char typeOf(int directory, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) {
    return entry.d_type;
  }
  struct stat info {};
  if (::fstatat(directory, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) != 0) {
    return DT_UNKNOWN;
  }
  return static_cast<unsigned char>(IFTODT(info.st_mode));
}

// False when the visitor wants to stop.
bool walk(DIR* directory, const std::string& path, int depth, const Visitor& visit) {
  const int fd = ::dirfd(directory);
  while (const dirent* entry = ::readdir(directory)) {
    if (entry->d_name[0] == '.') {
      continue;
    }
    const unsigned char type = typeOf(fd, *entry);
    const DirectoryEntry found{path + "/" + entry->d_name, entry->d_name, type == DT_REG};
    if (!visit(found)) {
      return false;
    }
    if (type == DT_DIR && depth < LinuxFiles::kDepthLimit) {
      const Directory child = openDirectory(fd, found.name.c_str());
      if (child && !walk(child.get(), found.path, depth + 1, visit)) {
        return false;
      }
    }
  }
  return true;
}

// A file that has no name until it is whole: cheaper than a temporary name, and nothing is left of it when the process
// dies. Nothing when the file is there already, or where this cannot be done (some file systems; no /proc).
std::optional<FileResult> writeUnnamed(int directory, const char* name, std::string_view bytes) {
  const UniqueFd fd(::openat(directory, ".", O_WRONLY | O_TMPFILE | O_CLOEXEC, kFileMode));
  if (!fd) {
    return std::nullopt;
  }
  if (const int error = writeWhole(fd.get(), bytes)) {
    return failure(error);
  }
  const std::string unnamed = "/proc/self/fd/" + std::to_string(fd.get());
  const bool isLinked = ::linkat(AT_FDCWD, unnamed.c_str(), directory, name, AT_SYMLINK_FOLLOW) == 0;
  return isLinked ? std::optional(FileResult()) : std::nullopt;
}

/// Locks by flock(), which the system ends with the last descriptor. A forked child has copies of the descriptors: the
/// parent unlocks explicitly, the child does not.
class LinuxFileLock final : public FileLock {
 public:
  explicit LinuxFileLock(UniqueFd file) : file_(std::move(file)) {}

  ~LinuxFileLock() override {
    if (file_ && !forkGuard_.isForkedChild()) {
      ::flock(file_.get(), LOCK_UN);
    }
  }

  LinuxFileLock(const LinuxFileLock&) = delete;
  LinuxFileLock& operator=(const LinuxFileLock&) = delete;

 private:
  const ForkGuard forkGuard_;
  const UniqueFd file_;
};

// 0, or the error number. Where the file system cannot keep a file from being replaced, a moment is left in which one
// may be.
int rename(int directory, const char* from, const char* to, bool mayReplace) {
  if (!mayReplace && ::renameat2(directory, from, directory, to, RENAME_NOREPLACE) == 0) {
    return 0;
  }
  if (!mayReplace && errno != EINVAL && errno != ENOSYS) {
    return errno;
  }
  return ::renameat(directory, from, directory, to) == 0 ? 0 : errno;
}

}  // namespace

LinuxFiles::LinuxFiles(std::string homeDirectory) : folders_(std::move(homeDirectory)) {}

std::string LinuxFiles::documentsDirectory() {
  return folders_.path(HomeFolders::Folder::Documents);
}

std::string LinuxFiles::cachesDirectory() {
  return folders_.path(HomeFolders::Folder::Caches);
}

std::string LinuxFiles::preferencesDirectory() {
  return folders_.path(HomeFolders::Folder::Preferences);
}

std::string LinuxFiles::outboxDirectory() {
  const std::string library = folders_.path(HomeFolders::Folder::Library);
  return library.empty() ? library : library + "/Outbox";
}

FileContent LinuxFiles::read(const std::string& path, std::size_t limit) {
  if (hasNul(path) || forkGuard_.isForkedChild()) {
    return {FileStatus::OtherFailure, {}};
  }
  const UniqueFd directory = openParent(parentOf(path));
  if (!directory) {
    return {statusOf(errno), {}};
  }
  const UniqueFd fd(::openat(directory.get(), nameIn(path), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat info {};
  if (!fd || ::fstat(fd.get(), &info) != 0) {
    return {statusOf(errno), {}};
  }
  if (!S_ISREG(info.st_mode)) {
    return {FileStatus::NotRegular, {}};
  }
  if (path.ends_with(kStoreSuffix)) {
    makePrivate(fd.get());
  }
  const auto size = static_cast<std::size_t>(info.st_size);
  if (size > limit) {
    return {FileStatus::TooLarge, {}};
  }
  FileContent content;
  const int error = readWhole(fd.get(), size, limit, content.bytes);
  if (error != 0) {
    return {statusOf(error), {}};
  }
  return content.bytes.size() > limit ? FileContent{FileStatus::TooLarge, {}} : content;
}

UniqueFd LinuxFiles::openForWriting(const std::string& directory, int& error) {
  UniqueFd fd = openParent(directory);
  error = fd ? 0 : errno;
  if (error == ENOENT) {
    error = makeDirectories(directory);
    fd = error == 0 ? openParent(directory) : UniqueFd();
    error = error == 0 && !fd ? errno : error;
  }
  const bool isBlocked = error == ENOTDIR || error == ELOOP;
  if (isBlocked && !hasToldOfBlock_.exchange(true)) {
    serviceLog(2, "Nothing can be written in " + directory + ": a file, or a link to no directory, is in the way.");
  }
  return fd;
}

FileResult LinuxFiles::write(const std::string& path, std::string_view bytes, bool mayReplace) {
  if (forkGuard_.isForkedChild()) {
    return forkedChild();
  }
  if (hasNul(path)) {
    return failure(EINVAL);
  }
  const std::string directoryPath = parentOf(path);
  sweepOnce(directoryPath);
  int error = 0;
  const UniqueFd directory = openForWriting(directoryPath, error);
  if (!directory) {
    return failure(error);
  }
  if (auto result = writeUnnamed(directory.get(), nameIn(path), bytes)) {
    return *result;
  }
  if (!mayReplace && ::faccessat(directory.get(), nameIn(path), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
    return failure(EEXIST);
  }
  std::string temporary;
  const int fd = openTemporary(directory.get(), temporary);
  if (fd < 0) {
    return failure(errno);
  }
  error = writeWhole(fd, bytes);
  if (::close(fd) != 0 && error == 0) {
    error = errno;
  }
  if (error == 0) {
    error = rename(directory.get(), temporary.c_str(), nameIn(path), mayReplace);
  }
  if (error != 0) {
    ::unlinkat(directory.get(), temporary.c_str(), 0);
    return failure(error);
  }
  return {};
}

int LinuxFiles::openTemporary(int directory, std::string& name) {
  const std::string start = std::string(kTemporaryPrefix) + std::to_string(::getpid()) + "-";
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    name = start + std::to_string(temporaries_++) + std::string(kTemporarySuffix);
    const int fd = ::openat(directory, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileMode);
    if (fd >= 0 || errno != EEXIST) {
      return fd;
    }
  }
  errno = EEXIST;
  return -1;
}

FileResult LinuxFiles::flush(const std::string& directory) {
  if (forkGuard_.isForkedChild()) {
    return forkedChild();
  }
  if (hasNul(directory)) {
    return failure(EINVAL);
  }
  const UniqueFd opened(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  // One call for any number of files, instead of one wait for each.
  return opened && ::syncfs(opened.get()) == 0 ? FileResult{} : failure(errno);
}

FileResult LinuxFiles::remove(const std::string& path) {
  if (forkGuard_.isForkedChild()) {
    return forkedChild();
  }
  if (hasNul(path)) {
    return failure(EINVAL);
  }
  const UniqueFd directory = openParent(parentOf(path));
  return directory && ::unlinkat(directory.get(), nameIn(path), 0) == 0 ? FileResult{} : failure(errno);
}

FileResult LinuxFiles::createDirectories(const std::string& path) {
  if (forkGuard_.isForkedChild()) {
    return forkedChild();
  }
  const int error = hasNul(path) ? EINVAL : makeDirectories(path);
  return error == 0 ? FileResult{} : failure(error);
}

void LinuxFiles::enumerate(const std::string& directory, const Visitor& visit) {
  const bool isRefused = hasNul(directory) || forkGuard_.isForkedChild();
  const Directory start = isRefused ? Directory() : openDirectory(AT_FDCWD, directory.c_str());
  if (start) {
    walk(start.get(), directory, 0, visit);
  }
}

std::unique_ptr<FileLock> LinuxFiles::tryLock(const std::string& directory) {
  if (hasNul(directory) || forkGuard_.isForkedChild()) {
    return nullptr;
  }
  UniqueFd file(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const bool isHeldElsewhere = file && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  return isHeldElsewhere ? nullptr : std::make_unique<LinuxFileLock>(std::move(file));
}

void LinuxFiles::sweepOnce(const std::string& directory) {
  {
    const MutexLock lock(mutex_);
    if (!swept_.insert(directory).second) {
      return;
    }
  }
  const Directory listing = openDirectory(AT_FDCWD, directory.c_str());
  const dirent* entry = nullptr;
  while (listing && (entry = ::readdir(listing.get())) != nullptr) {
    if (isTemporaryName(entry->d_name)) {
      removeIfStale(::dirfd(listing.get()), entry->d_name);
    }
  }
}

}  // namespace kesu
