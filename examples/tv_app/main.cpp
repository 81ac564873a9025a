// A host that a script drives: tv_app --script FILE, or "-" to take the lines from standard input as they come.
#include <kesu/kesu.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <string>

#include "ScriptHost.h"

namespace {

constexpr int kMisuse = 2;

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

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 || std::strcmp(argv[1], "--script") != 0) {
    std::printf("usage: tv_app --script FILE    (\"-\" reads lines from standard input)\n\n%s",
                tv::ScriptHost::commands());
    return argc == 2 && std::strcmp(argv[1], "--help") == 0 ? 0 : kMisuse;
  }
  tv::ScriptClock clock;
  kesu::PlatformOptions options;
  options.clock = &clock;
  kesu::installLinuxPlatform(options);
  tv::ScriptHost host(clock);
  return std::strcmp(argv[2], "-") == 0 ? performInput(host) : performFile(host, argv[2]);
}
