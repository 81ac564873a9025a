// A small TV app that uses the library.
#include <kesu.h>

#include <cstdio>
#include <stdexcept>

#include "Display.h"
#include "Options.h"
#include "TvApp.h"

namespace {

constexpr int kMisuse = 2;
constexpr const char* kAppKey = "example-tv";

void run(const tv::Options& options) {
  tv::TvApp* shown = nullptr;
  kesu::PlatformOptions platform;
  platform.urlOpener = [&](const std::string& url) { return shown != nullptr && shown->openLink(url); };
  kesu::installLinuxPlatform(platform);
  kesu::Kesu::initialize(kAppKey);

  tv::Display display(options.isFullScreen, options.width, options.height);
  kesu::Application::shared().didFinishLaunching();
  {
    tv::TvApp app(display.renderer(), options.stateFile);
    shown = &app;
    if (options.showsMessages) {
      app.mailbox().show();
    }
    app.run();
    shown = nullptr;
  }
  kesu::Application::shared().willTerminate();
}

}  // namespace

int main(int argc, char** argv) {
  const tv::Options options = tv::parseOptions(argc, argv);
  if (options.wantsHelp || !options.error.empty()) {
    std::printf(
        "usage: tv_app [--size WxH] [--fullscreen] [--show-messages] [--state FILE]\n\n"
        "  --show-messages  show the popup at once\n"
        "  --state FILE     write a line for every change of screen or focus\n\n"
        "Keys: arrows, Return, Escape. For scripts see tv_session.\n");
  }
  if (!options.error.empty()) {
    std::fprintf(stderr, "tv_app: %s\n", options.error.c_str());
    return kMisuse;
  }
  try {
    if (!options.wantsHelp) {
      run(options);
    }
    return 0;
  } catch (const std::runtime_error& error) {
    std::fprintf(stderr, "tv_app: %s\n", error.what());
    return kMisuse;
  }
}
