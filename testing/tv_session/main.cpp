// Drives the app of tv_app, or the library without a screen, by the lines of a script: for tests and demonstrations.
#include <kesu.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

#include "ScreenScript.h"
#include "ScriptHost.h"

namespace {

constexpr int kMisuse = 2;

int complain(const std::string& place, const std::string& reason) {
  std::fprintf(stderr, "tv_session: %s: %s\n", place.c_str(), reason.c_str());
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

int runScript(const std::string& script) {
  static tv::ScriptClock clock;  // The library's exit handler still asks it.
  tv::ScreenScript screen;
  kesu::PlatformOptions platform;
  platform.clock = &clock;
  platform.urlOpener = [&](const std::string& url) { return screen.openLink(url); };
  kesu::installLinuxPlatform(platform);
  tv::ScriptHost host(clock);
  screen.addTo(host);
  return script == "-" ? performInput(host) : performFile(host, script);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string script = argc == 2 ? argv[1] : "--help";
  if (script == "--help") {
    std::printf("usage: tv_session FILE    (\"-\" reads lines from standard input as they come)\n\n%s%s",
                tv::ScriptHost::commands(), tv::ScreenScript::commands());
    return argc == 2 ? 0 : complain("command line", "name one script");
  }
  try {
    return runScript(script);
  } catch (const std::runtime_error& error) {
    return complain("cannot continue", error.what());
  }
}
