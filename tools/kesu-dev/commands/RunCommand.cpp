#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>

#include "tools/kesu-dev/base/Console.h"
#include "tools/kesu-dev/commands/ChildProgram.h"
#include "tools/kesu-dev/commands/Commands.h"
#include "tools/kesu-dev/commands/ServiceOptions.h"
#include "tools/kesu-dev/commands/Signals.h"
#include "tools/kesu-dev/messages/MessageReport.h"
#include "tools/kesu-dev/records/RecordText.h"
#include "tools/loopback/TemporaryDirectory.h"

namespace kesu::dev {
namespace {

constexpr int kNoSuchProgram = 127;  // As a shell has it.
constexpr int kNotRunnable = 126;    // As a shell has it.
constexpr std::size_t kReportWidth = 100;
constexpr std::size_t kBadRecordsShown = 10;

struct RunOptions {
  ServiceOptions services;
  std::string home;                // The library's home in the program; empty = KESU_HOME, else an empty one.
  std::vector<std::string> child;  // The program and its arguments.
};

// The home directory for the program: the one asked for, the user's own, or nothing for one of this run.
std::optional<std::string> wantedHome(const std::string& wanted) {
  if (!wanted.empty()) {
    return std::filesystem::absolute(wanted).string();
  }
  const char* own = std::getenv("KESU_HOME");
  return own != nullptr && *own != '\0' ? std::optional<std::string>(own) : std::nullopt;
}

void printSummary(RecordStore& store) {
  const CountsByDestination counts = store.counts();
  if (sum(counts).total() == 0) {
    say("no records arrived");
    return;
  }
  std::fprintf(stderr, "\nWhat arrived:\n%s", summaryTable(counts, kReportWidth).c_str());
  const std::vector<StoredRecord> bad = store.read(RecordStore::Which::Bad, 0, kBadRecordsShown);
  if (!bad.empty()) {
    std::fprintf(stderr, "\nThe first bad records:\n%s", recordTable(bad, kReportWidth).c_str());
  }
}

int runAgainst(Services& services, const RunOptions& options, const BlockedSignals& signals) {
  std::optional<loopback::TemporaryDirectory> scratch;
  std::optional<std::string> home = wantedHome(options.home);
  if (!home) {
    home = scratch.emplace().path();
  }
  std::vector<std::string> added = services.environment();
  if (!home->empty()) {
    added.push_back("KESU_HOME=" + *home);
  }
  say("collects at " + services.url() + ", messages at https://" + services.messagingHost() + ", home " + *home +
      (scratch ? " (removed at the end)" : ""));
  const StartedProgram started = startProgram(options.child, environmentWith(ownEnvironment(), added), signals);
  if (started.error != 0) {
    say("cannot run " + options.child.front() + ": " + std::strerror(started.error));
    return started.error == ENOENT ? kNoSuchProgram : kNotRunnable;
  }
  const int status = waitForProgram(started.pid, signals);
  services.settle();
  services.stop();
  printSummary(services.store());
  if (!options.services.services.messages.empty()) {
    std::fprintf(stderr, "\nMessages:\n%s", messageTable(services.messaging().report(), kReportWidth).c_str());
  }
  return status;
}

int run(const RunOptions& options) {
  const BlockedSignals signals;
  ReadyFile readyFile;
  const std::unique_ptr<Services> services = startServices(options.services, readyFile);
  return services != nullptr ? runAgainst(*services, options, signals) : 1;
}

}  // namespace

void addRunCommand(Program& program) {
  const auto options = std::make_shared<RunOptions>();
  Command command =
      program.command("run",
                      "run a program against services of its own: kesu-dev run [OPTIONS] -- PROGRAM ARGUMENTS...\n"
                      "Ends with the program's status and a summary of what it sent",
                      [options] { return run(*options); });
  addServiceOptions(command, options->services);
  command.option("--home", "DIR",
                 "home directory of the library in the program (default: KESU_HOME when it is\n"
                 "set, else an empty directory removed at the end: every run is a first launch)",
                 options->home);
  command.argumentsBehindDashes(options->child);
  command.note(
      "The program finds KESU_OVERRIDE_SERVER, KESU_REACHABILITY_HOST, KESU_MESSAGING_HOST, KESU_CA_FILE and KESU_HOME "
      "set.");
}

}  // namespace kesu::dev
