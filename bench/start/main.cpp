// The smallest program that starts: with the library, without it, and with nothing but what the library stands on.
// Prints the microseconds that Kesu::initialize took and the memory in kB that the process holds afterwards, then the
// same with the launch and that many milliseconds later. Arguments: the home directory, milliseconds.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

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
void launch() {
  kesu::Application::shared().didFinishLaunching();
}
#else
void initialize(const char* /*home*/) {}
void launch() {}
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
  using Microseconds = std::chrono::duration<double, std::micro>;
  const auto start = std::chrono::steady_clock::now();
  initialize(argc > 1 ? argv[1] : "");
  const Microseconds initializing = std::chrono::steady_clock::now() - start;
  const long initialized = memoryKilobytes();
  const auto again = std::chrono::steady_clock::now();
  launch();
  const Microseconds launching = std::chrono::steady_clock::now() - again;
  std::this_thread::sleep_for(std::chrono::milliseconds(argc > 2 ? std::atoi(argv[2]) : 0));
  std::printf("%.1f %ld %.1f %ld\n", initializing.count(), initialized, (initializing + launching).count(),
              memoryKilobytes());
  return 0;
}
