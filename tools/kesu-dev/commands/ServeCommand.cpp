#include <cstdio>

#include "tools/kesu-dev/commands/Commands.h"
#include "tools/kesu-dev/commands/ServiceOptions.h"
#include "tools/kesu-dev/commands/Signals.h"
#include "tools/kesu-dev/records/RecordText.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kSummaryWidth = 100;

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

int serve(const ServiceOptions& options) {
  const BlockedSignals signals;
  ReadyFile readyFile;
  const std::unique_ptr<Services> services = startServices(options, readyFile);
  if (services == nullptr) {
    return 1;
  }
  printAddresses(*services);
  int signal = SIGCHLD;
  while (signal == SIGCHLD) {
    signal = signals.wait().si_signo;
  }
  services->stop();
  std::printf("\n%s", summaryTable(services->store().counts(), kSummaryWidth).c_str());
  return 0;
}

}  // namespace

void addServeCommand(Program& program) {
  const auto options = std::make_shared<ServiceOptions>();
  Command command = program.command("serve", "serve until Ctrl-C", [options] { return serve(*options); });
  addServiceOptions(command, *options);
}

}  // namespace kesu::dev
