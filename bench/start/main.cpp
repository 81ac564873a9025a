// The smallest program that starts: with the library, without it, and with nothing but what the library stands on.
// Prints the microseconds that Kesu::initialize took and the memory in kB that the process holds afterwards. Argument:
// the home directory.
#include <chrono>
#include <cstdio>
#include <cstring>

#ifdef KESU_BENCH_WITH_LIBRARY
#include <kesu.h>
#endif

namespace {

#ifdef KESU_BENCH_WITH_LIBRARY
void initialize(const char* home) {
  kesu::PlatformOptions options;
  options.homeDirectory = home;
  options.collectorUrl = "http://127.0.0.1:9/";
  options.logSink = [](int, std::string_view) {};
  kesu::installLinuxPlatform(options);
  kesu::Kesu::initialize("benchmark key");
}
#else
void initialize(const char* /*home*/) {}
#endif

long memoryKilobytes() {
  long memory = 0;
  char line[256];
  std::FILE* const file = std::fopen("/proc/self/status", "re");
  while (file != nullptr && std::fgets(line, sizeof line, file) != nullptr) {
    if (std::strncmp(line, "VmRSS:", 6) == 0) {
      std::sscanf(line + 6, "%ld", &memory);
    }
  }
  if (file != nullptr) {
    std::fclose(file);
  }
  return memory;
}

}  // namespace

int main(int argc, char** argv) {
  const auto start = std::chrono::steady_clock::now();
  initialize(argc > 1 ? argv[1] : "");
  const std::chrono::duration<double, std::micro> taken = std::chrono::steady_clock::now() - start;
  std::printf("%.1f %ld\n", taken.count(), memoryKilobytes());
  return 0;
}
