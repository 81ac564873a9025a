#include "platform/linux/base/RegularFile.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {

std::optional<std::string> readRegularFile(const std::string& path, std::size_t limit) {
  const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat facts {};
  if (!file || ::fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode) ||
      static_cast<std::size_t>(facts.st_size) > limit) {
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(facts.st_size), '\0');
  std::size_t got = 0;
  while (got < bytes.size()) {
    const ssize_t count = ::read(file.get(), bytes.data() + got, bytes.size() - got);
    if (count > 0) {
      got += static_cast<std::size_t>(count);
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  bytes.resize(got);
  return bytes;
}

}  // namespace kesu
