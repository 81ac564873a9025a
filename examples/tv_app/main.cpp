// A small TV app that uses the library: in a window for people, or driven by a script (tv_app --script FILE, or "-" to
// take the lines from standard input as they come).
#include <kesu.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

#include "Options.h"
#include "ScreenScript.h"
#include "ScriptHost.h"

namespace {

constexpr int kMisuse = 2;
constexpr const char* kAppKey = "example-tv";

int complain(const std::string& place, const std::string& reason) {
  std::fprintf(stderr, "tv_app: %s: %s\n", place.c_str(), reason.c_str());
  return kMisuse;
}

int performFile(tv::ScriptHost& host, const std::string& path) {
  std::ifstream script(path);
  if (!script) {
    return complain(path, "cannot be read");
  }
  int number = 0;
  for (std::string line; !host.hasQuit() && std::getline(script, line);) {
    ++number;
    if (!host.perform(tv::parseScriptLine(line))) {
      return complain(path + ":" + std::to_string(number), host.error());
    }
  }
  return 0;
}

/// Waits for input or for work of the main loop, whichever comes first. Returns whether there is input.
bool waitForInput() {
  kesu::MainLoop& loop = kesu::MainLoop::shared();
  pollfd sources[] = {{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0},
                      {.fd = loop.fd(), .events = POLLIN, .revents = 0}};
  ::poll(sources, 2, -1);
  loop.pump();
  return sources[0].revents != 0;
}

int performInput(tv::ScriptHost& host) {
  std::string pending;
  char bytes[4096];
  while (!host.hasQuit()) {
    if (!waitForInput()) {
      continue;
    }
    const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
    if (count <= 0) {
      break;
    }
    pending.append(bytes, static_cast<std::size_t>(count));
    for (std::size_t end; !host.hasQuit() && (end = pending.find('\n')) != std::string::npos;) {
      if (!host.perform(tv::parseScriptLine(pending.substr(0, end)))) {
        return complain("input", host.error());
      }
      pending.erase(0, end + 1);
    }
  }
  return 0;
}

int runScript(const tv::Options& options) {
  static tv::ScriptClock clock;  // The library's exit handler still asks it.
  tv::ScreenScript screen(options.width, options.height, options.stateFile);
  kesu::PlatformOptions platform;
  platform.clock = &clock;
  platform.urlOpener = [&](const std::string& url) { return screen.openLink(url); };
  kesu::installLinuxPlatform(platform);
  tv::ScriptHost host(clock);
  screen.addTo(host);
  return options.script == "-" ? performInput(host) : performFile(host, options.script);
}

int runWindow(const tv::Options& options) {
  tv::TvApp* shown = nullptr;
  kesu::PlatformOptions platform;
  platform.urlOpener = [&](const std::string& url) { return shown != nullptr && shown->openLink(url); };
  kesu::installLinuxPlatform(platform);
  kesu::Kesu::initialize(kAppKey);

  tv::Display display(options.isFullScreen ? tv::Display::Kind::FullScreen : tv::Display::Kind::Window, options.width,
                      options.height);
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
  return 0;
}

void printUsage() {
  std::printf(
      "usage: tv_app [--window] [--size WxH] [--fullscreen] [--show-messages] [--state FILE]\n"
      "       tv_app --script FILE [--size WxH] [--state FILE]    (\"-\" reads lines from standard input)\n\n"
      "  --show-messages  show the popup at once\n"
      "  --state FILE     write a line for every change of screen or focus\n\n"
      "Keys: arrows, Return, Escape. Commands of scripts:\n\n%s%s",
      tv::ScriptHost::commands(), tv::ScreenScript::commands());
}

}  // namespace

int main(int argc, char** argv) {
  const tv::Options options = tv::parseOptions(argc, argv);
  if (options.wantsHelp || !options.error.empty()) {
    printUsage();
    return options.wantsHelp ? 0 : complain("command line", options.error);
  }
  try {
    return options.script.empty() ? runWindow(options) : runScript(options);
  } catch (const std::runtime_error& error) {
    return complain("cannot go on", error.what());
  }
}
