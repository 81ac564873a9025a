#pragma once

#include <fstream>
#include <string>

#if defined(__has_feature)
#define KESU_HAS_CLANG_SANITIZER (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define KESU_HAS_CLANG_SANITIZER 0
#endif

namespace kesu::testing {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || KESU_HAS_CLANG_SANITIZER
inline constexpr bool kIsSanitized = true;  ///< Memory and time are not those of the library.
#else
inline constexpr bool kIsSanitized = false;
#endif

/// How far the memory of this process rises from here on, by the system's own count.
class MemoryPeak {
 public:
  MemoryPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";  // The peak counts from here.
    before_ = field("VmRSS");
  }

  /// With a sanitizer, whose own memory cannot be told apart, it is always 0.
  long kilobytes() const { return kIsSanitized ? 0 : field("VmHWM") - before_; }

 private:
  /// A field of /proc/self/status, in kB.
  static long field(const std::string& name) {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with(name + ":")) {
        return std::stol(line.substr(name.size() + 1));
      }
    }
    return 0;
  }

  long before_ = 0;
};

}  // namespace kesu::testing
