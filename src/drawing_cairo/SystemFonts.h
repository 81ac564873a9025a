#pragma once

#include <fontconfig/fontconfig.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <thread>

namespace kesu {

/// Whether the library that sets texts looks up fonts on one of its threads, which nobody joins.
inline bool isLookingUpFonts() {
  std::error_code ignored;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task", ignored)) {
    std::ifstream file(thread.path() / "comm");
    std::string name;
    if (std::getline(file, name) && name.starts_with("[pango]")) {
      return true;
    }
  }
  return false;
}

/// Has a program of our own end without the fonts of the system: fontconfig finds their parts by offsets instead of
/// pointers, and LeakSanitizer takes them, and what a lookup still owns, for lost. Waits for lookups, 5 s at most,
/// which FcFini() would not. Not for the library, since a host shares fontconfig with it.
inline void forgetSystemFonts() {
  // A thread has its name only some time after it has begun.
  for (int round = 0, quiet = 0; round < 1000 && quiet < 5; ++round) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    quiet = isLookingUpFonts() ? 0 : quiet + 1;
  }
  FcConfig* nothing = FcConfigCreate();
  FcConfigSetCurrent(nothing);
  FcConfigDestroy(nothing);
}

}  // namespace kesu
