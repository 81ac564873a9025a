#pragma once

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <optional>
#include <string>

namespace kesu::testing {

/// Runs `body` in a forked child and returns what it returned; nothing when the child did not end by itself. The body
/// must not use what threads of this process may have locked. Failed expectations in it are lost: it returns a verdict.
inline std::optional<int> runInChild(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(body());
  }
  int status = 0;
  const bool ended = child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status);
  return ended ? std::optional<int>(WEXITSTATUS(status)) : std::nullopt;
}

/// The same without the rights of the super-user: file permissions then count as they do for a host application.
inline std::optional<int> runUnprivileged(const std::function<int()>& body) {
  constexpr uid_t kNobody = 65534;
  return runInChild([&] { return ::geteuid() == 0 && ::setuid(kNobody) != 0 ? 255 : body(); });
}

/// For use in a child: mounts a file system of `size` bytes (such as "256k") over `directory`, seen by this process
/// only. False where the system does not let this process mount.
inline bool mountSmallDisk(const char* directory, const char* size) {
  const std::string options = std::string("size=") + size;
  return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", directory, "tmpfs", 0, options.c_str()) == 0;
}

}  // namespace kesu::testing
