#include "platform/linux/base/SystemFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

constexpr std::size_t kChunkBytes = 4096;

/// The number of bytes read; nothing on an error.
std::optional<std::size_t> readChunk(int fd, char* into, std::size_t size) {
  while (true) {
    const ssize_t count = ::read(fd, into, size);
    if (count >= 0) {
      return static_cast<std::size_t>(count);
    }
    if (errno != EINTR) {
      return std::nullopt;
    }
  }
}

}  // namespace

std::optional<std::string> readSystemFile(const std::string& path, std::size_t limit) {
  const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat facts {};
  if (!fd || ::fstat(fd.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
    return std::nullopt;
  }
  std::string bytes;
  while (bytes.size() < limit) {
    const std::size_t before = bytes.size();
    const std::size_t wanted = std::min(kChunkBytes, limit - before);
    bytes.resize(before + wanted);
    const auto count = readChunk(fd.get(), bytes.data() + before, wanted);
    bytes.resize(before + count.value_or(0));
    if (!count) {
      return std::nullopt;  // As when a process ends while its description is being read.
    }
    if (*count == 0) {
      break;
    }
  }
  return bytes;
}

}  // namespace kesu
