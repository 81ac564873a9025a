// Drives the app of tv_app, or the library without a screen, by the lines of standard input, as they come.
//   init KEY [LOGLEVEL], launch, background, resume, terminate
//   appear NAME, disappear NAME      a screen
//   scene NAME SECONDS               adds to the scene flow
//   event NAME k=v ...               posts an event
//   start NAME, timed NAME k=v ...   posts an event with the seconds since "start NAME"
//   activation k=v ...               reports an activation of the host's own
//   call CLASS OPERATION ARGUMENT ... k=v ...   posts an event of the catalogue; the argument nil is for none
//   uid ID                           sets the user identifier
//   count, headers TYPE, messages TYPE, body CID MID   print what the service has; TYPE: unread, read or all, or 0 to 2
//   tags, is-tag TAG                 print the tags, and whether one was among those fetched last
//   show-messages [TYPE]             shows the popup on a screen in memory, which the first such command makes
//   press BUTTON                     up, down, left, right, select, menu or play
//   frame SECONDS                    runs the main loop and draws for so long
//   screenshot FILE                  draws, and writes what is on the screen as PNG
//   focus                            prints what is focused
//   pump SECONDS, clock +SECONDS     runs the main loop for so long; moves the clock
//   quit                             returns from main() without "terminate"
#include <kesu.h>
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

#include "ScreenScript.h"
#include "ScriptHost.h"

namespace {

constexpr int kMisuse = 2;

int complain(const std::string& reason) {
  std::fprintf(stderr, "tv_session: %s\n", reason.c_str());
  return kMisuse;
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
        return complain(host.error());
      }
      pending.erase(0, end + 1);
    }
  }
  return 0;
}

int runScript() {
  static tv::ScriptClock clock;  // The library's exit handler still asks it.
  tv::ScreenScript screen;
  kesu::PlatformOptions platform;
  platform.clock = &clock;
  platform.urlOpener = [&](const std::string& url) { return screen.openLink(url); };
  kesu::installLinuxPlatform(platform);
  tv::ScriptHost host(clock);
  screen.addTo(host);
  return performInput(host);
}

}  // namespace

int main() {
  try {
    return runScript();
  } catch (const std::runtime_error& error) {
    return complain(error.what());
  }
}
