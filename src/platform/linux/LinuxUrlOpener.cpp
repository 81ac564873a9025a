#include "platform/linux/LinuxUrlOpener.h"

#include <errno.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "foundation/Text.h"
#include "foundation/Url.h"
#include "platform/linux/base/ServiceThread.h"

namespace kesu {
namespace {

constexpr std::array<std::string_view, 4> kRefusedSchemes = {"file", "javascript", "vbscript", "data"};

bool isControl(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
}

/// What a started program gets of this process: no signal settings and no descriptors but the standard ones.
class SpawnSettings {
 public:
  SpawnSettings() {
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }

  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  // Returns the process, or -1.
  pid_t spawn(std::string program, std::string argument) const {
    std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
    pid_t process = -1;
    const int error = posix_spawnp(&process, program.c_str(), &actions_, &attributes_, arguments.data(), environ);
    return error == 0 ? process : -1;
  }

 private:
  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t actions_{};
};

void waitForEnd(pid_t process) {
  while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool openWithDesktop(const std::string& url) {
  const pid_t process = SpawnSettings().spawn("xdg-open", url);
  if (process < 0) {
    return false;
  }
  std::thread reaper = startServiceThread("kesu-open", [process] { waitForEnd(process); });
  if (reaper.joinable()) {
    reaper.detach();
  }
  return true;
}

}  // namespace

bool mayOpenUrl(const std::string& url) {
  const std::string scheme = asciiLowerCase(urlScheme(url));
  return !scheme.empty() && std::ranges::find(kRefusedSchemes, scheme) == kRefusedSchemes.end() &&
         std::ranges::none_of(url, isControl);
}

LinuxUrlOpener::LinuxUrlOpener(Function function) : function_(std::move(function)) {}

bool LinuxUrlOpener::open(const std::string& url) {
  if (!mayOpenUrl(url)) {
    return false;
  }
  return function_ ? function_(url) : openWithDesktop(url);
}

}  // namespace kesu
