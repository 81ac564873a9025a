#include "platform/linux/base/PrivateDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

constexpr mode_t kDirectoryMode = 0700;

// "" when there is none to be made.
std::string directoryAbove(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

int makeDirectories(const std::string& path) {
  if (::mkdir(path.c_str(), kDirectoryMode) == 0) {
    return 0;
  }
  int error = errno;
  if (const std::string above = directoryAbove(path); error == ENOENT && !above.empty()) {
    error = makeDirectories(above);
    if (error != 0 || ::mkdir(path.c_str(), kDirectoryMode) == 0) {
      return error;
    }
    error = errno;
  }
  struct stat info {};
  if (error == EEXIST) {
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
  }
  return error;
}

int makePrivateDirectory(const std::string& path) {
  const int error = makeDirectories(path);
  if (error == 0) {
    if (const UniqueFd directory(::open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)); directory) {
      makePrivate(directory.get());
    }
  }
  return error;
}

void makePrivate(int fd) {
  struct stat info {};
  constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
  if (::fstat(fd, &info) != 0 || S_ISLNK(info.st_mode) || info.st_uid != ::geteuid() || (info.st_mode & kOthers) == 0) {
    return;
  }
  const mode_t mode = info.st_mode & 07777 & ~kOthers;
  if (::fchmod(fd, mode) != 0 && errno == EBADF) {  // O_PATH
    ::chmod(("/proc/self/fd/" + std::to_string(fd)).c_str(), mode);
  }
}

}  // namespace kesu
