// The smallest program that starts: with the library, without it, and with nothing but what the library stands on.
// Prints the microseconds that Kesu::initialize took and the memory in kB that the process holds afterwards, then the
// same with the launch and that many milliseconds later; when main() began, in seconds of the steady clock; how many
// shared libraries are loaded; and the milliseconds from the request for a frame with a text until it was there, 0 if
// none is asked for. Arguments: the home directory, milliseconds, "text" for such a frame.
#include <link.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
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
void drawText() {
  kesu::Overlay overlay;
  kesu::Window window;
  const auto label = std::make_shared<kesu::Label>(kesu::Rect{100.0, 100.0, 400.0, 100.0});
  label->setText("A text");
  window.addSubview(label);
  window.makeKeyAndVisible();
  while (overlay.layers(0.0).empty()) {
    std::this_thread::yield();
  }
}
#else
void initialize(const char* /*home*/) {}
void launch() {}
void drawText() {}
#endif

long loadedLibraries() {
  long libraries = 0;
  dl_iterate_phdr(
      [](dl_phdr_info* library, std::size_t, void* count) {
        *static_cast<long*>(count) += std::strstr(library->dlpi_name, ".so") != nullptr ? 1 : 0;
        return 0;
      },
      &libraries);
  return libraries;
}

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
  using Seconds = std::chrono::duration<double>;
  using Microseconds = std::chrono::duration<double, std::micro>;
  const auto start = std::chrono::steady_clock::now();
  initialize(argc > 1 ? argv[1] : "");
  const Microseconds initializing = std::chrono::steady_clock::now() - start;
  const long initialized = memoryKilobytes();
  const auto again = std::chrono::steady_clock::now();
  launch();
  const Microseconds launching = std::chrono::steady_clock::now() - again;
  std::this_thread::sleep_for(std::chrono::milliseconds(argc > 2 ? std::atoi(argv[2]) : 0));
  const long launched = memoryKilobytes();
  const long libraries = loadedLibraries();
  double drawing = 0.0;
  if (argc > 3) {
    const auto asked = std::chrono::steady_clock::now();
    drawText();
    drawing = Seconds(std::chrono::steady_clock::now() - asked).count() * 1e3;
  }
  std::printf("%.1f %ld %.1f %ld %.6f %ld %.2f\n", initializing.count(), initialized,
              (initializing + launching).count(), launched, Seconds(start.time_since_epoch()).count(), libraries,
              drawing);
  return 0;
}
