#include "tools/kesu-dev/commands/ServeCommand.h"

#include <cstdio>

#include "tools/kesu-dev/commands/ReadyFile.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/commands/Signals.h"
#include "tools/kesu-dev/records/RecordText.h"

namespace kesu::dev {
namespace {

void printAddresses(const Services& services) {
  const std::string url = services.url();
  std::printf("kesu-dev collects at %s, sends messages at https://%s\n\n", url.c_str(),
              services.messagingHost().c_str());
  for (const std::string& assignment : services.environment()) {
    std::printf("  export %s\n", assignment.c_str());
  }
  std::printf(
      "\n"
      "  %s                         everything live, in a browser\n"
      "  kesu-dev tail --url %s     records as they arrive\n"
      "  kesu-dev show --url %s     all records so far\n"
      "  kesu-dev messages --url %s the messages and what became of them\n"
      "\n"
      "Ctrl-C ends it.\n",
      url.c_str(), url.c_str(), url.c_str(), url.c_str());
  std::fflush(stdout);
}

}  // namespace

int runServe(const CommandLine& line) {
  const BlockedSignals signals;
  std::string error;
  const std::unique_ptr<Services> services = Services::start(line.services, error);
  ReadyFile readyFile;
  if (services == nullptr || !readyFile.write(line.readyFile, *services)) {
    std::fprintf(stderr, "kesu-dev: %s\n", error.empty() ? "cannot write the ready file" : error.c_str());
    return 1;
  }
  printAddresses(*services);
  int signal = SIGCHLD;
  while (signal == SIGCHLD) {
    signal = signals.wait().si_signo;
  }
  services->stop();
  std::printf("\n%s", summaryTable(services->store().counts(), 100).c_str());
  return 0;
}

}  // namespace kesu::dev
