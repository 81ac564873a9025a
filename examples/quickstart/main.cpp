// The whole of what a host has to write. README.md shows these lines.
#include <kesu.h>

#include <chrono>
#include <thread>

int main() {
  kesu::Kesu::initialize("my app key");
  kesu::Application::shared().didFinishLaunching();
  kesu::KesuCustomEvent::postWithEventName("PlaybackStarted", {{"title", "Night Train"}, {"episode", 3}});
  for (int frame = 0; frame < 60; ++frame) {  // The host's own loop.
    kesu::MainLoop::shared().pump();
    std::this_thread::sleep_for(std::chrono::milliseconds(16));
  }
  kesu::Application::shared().willTerminate();
}
