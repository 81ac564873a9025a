// A host that shows the popup, for scripts/lib/check-install. The service cannot be reached, which the popup says.
// Writes "drawn", or "not drawn" once the library has said why on standard error. Argument: the home directory.
#include <kesu.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  static std::atomic<bool> isRefused{false};  // The library loads what draws on a thread of its own.
  kesu::PlatformOptions options;
  options.homeDirectory = argc > 1 ? argv[1] : "";
  options.collectorUrl = "http://127.0.0.1:9/";
  options.messagingHost = "127.0.0.1:9";
  options.logSink = [](int level, std::string_view text) {
    if (level == 0 && text.find("kesu-drawing") != std::string_view::npos) {
      std::fprintf(stderr, "%.*s\n", static_cast<int>(text.size()), text.data());
      isRefused = true;
    }
  };
  kesu::installLinuxPlatform(options);
  kesu::Kesu::initialize("check");
  kesu::Application::shared().didFinishLaunching();
  bool isDrawn = false;
  {
    kesu::Overlay overlay;
    kesu::Kesu::showUnreadInAppNotificationUIWithCompletionHandler({});
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (!overlay.isModal() && !isRefused && Clock::now() < end) {
      kesu::MainLoop::shared().pump();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    for (const double seconds : {0.0, 1.0, 2.0}) {
      overlay.layers(seconds);
    }
    const kesu::ImagePtr picture = overlay.snapshot();
    const std::uint32_t* pixels = picture->pixels();
    isDrawn = std::any_of(pixels, pixels + picture->byteCount() / 4, [](std::uint32_t pixel) { return pixel != 0; });
  }
  std::puts(isDrawn ? "drawn" : "not drawn");
  kesu::KesuCustomEvent::postWithEventName("checked");
  kesu::Application::shared().willTerminate();
  return 0;
}
