#include "tools/kesu-dev/commands/RunCommand.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "tools/kesu-dev/commands/ReadyFile.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/commands/Signals.h"
#include "tools/kesu-dev/messages/MessageReport.h"
#include "tools/kesu-dev/records/RecordText.h"

namespace kesu::dev {
namespace {

constexpr int kPatienceSeconds = 10;
constexpr int kNotFound = 127;
constexpr int kNotRunnable = 126;
constexpr int kBySignal = 128;
constexpr std::size_t kSummaryWidth = 100;
constexpr std::size_t kBadRecordsShown = 10;

void say(const std::string& text) {
  std::fprintf(stderr, "kesu-dev: %s\n", text.c_str());
}

// The home directory that the program gets: the one asked for, the user's own, or an empty one that goes away again.
class ProgramHome {
 public:
  explicit ProgramHome(const std::string& wanted) {
    const char* own = std::getenv("KESU_HOME");
    if (!wanted.empty()) {
      path_ = std::filesystem::absolute(wanted).string();
    } else if (own != nullptr && *own != '\0') {
      path_ = own;
    } else {
      std::string pattern = (std::filesystem::temp_directory_path() / "kesu-run-XXXXXX").string();
      temporary_ = mkdtemp(pattern.data()) != nullptr;
      path_ = temporary_ ? pattern : "";
    }
  }

  ~ProgramHome() {
    std::error_code ignored;
    if (temporary_) {
      std::filesystem::remove_all(path_, ignored);
    }
  }

  ProgramHome(const ProgramHome&) = delete;
  ProgramHome& operator=(const ProgramHome&) = delete;

  const std::string& path() const { return path_; }
  bool isTemporary() const { return temporary_; }

 private:
  std::string path_;
  bool temporary_ = false;
};

std::vector<std::string> ownEnvironment() {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    result.emplace_back(*entry);
  }
  return result;
}

// The null-terminated form that exec wants; the texts must outlive it.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

// Runs in the child between fork and exec of a program with threads: async-signal-safe calls only.
[[noreturn]] void becomeProgram(char* const* arguments, char* const* environment, const BlockedSignals& signals,
                                pid_t parent, int failurePipe) {
  signals.restoreInChild();
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() == parent) {
    execvpe(arguments[0], arguments, environment);
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(failurePipe, &error, sizeof error);
  }
  _exit(kNotFound);
}

struct Started {
  pid_t pid = -1;
  int error = 0;  // errno of fork or exec; 0 = the program runs.
};

Started startProgram(std::vector<std::string> arguments, std::vector<std::string> environment,
                     const BlockedSignals& signals) {
  Started started;
  int failure[2];
  if (pipe2(failure, O_CLOEXEC) != 0) {
    started.error = errno;
    return started;
  }
  const std::vector<char*> argumentPointers = pointersTo(arguments);
  const std::vector<char*> environmentPointers = pointersTo(environment);
  const pid_t parent = getpid();
  started.pid = fork();
  if (started.pid == 0) {
    becomeProgram(argumentPointers.data(), environmentPointers.data(), signals, parent, failure[1]);
  }
  started.error = started.pid < 0 ? errno : 0;
  close(failure[1]);
  // The pipe closes by itself when exec succeeds.
  [[maybe_unused]] const ssize_t count = read(failure[0], &started.error, sizeof started.error);
  close(failure[0]);
  if (started.pid > 0 && started.error != 0) {
    waitpid(started.pid, nullptr, 0);
  }
  return started;
}

std::optional<int> endedWith(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, WNOHANG) != pid) {
    return std::nullopt;
  }
  return WIFSIGNALED(status) ? kBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

int waitForProgram(pid_t pid, const BlockedSignals& signals) {
  int patience = -1;
  while (true) {
    const siginfo_t info = signals.wait(patience);
    if (const std::optional<int> status = endedWith(pid)) {
      return *status;
    }
    if (info.si_signo == 0) {
      kill(pid, SIGKILL);
    } else if (info.si_signo != SIGCHLD) {
      patience = kPatienceSeconds;
      // The terminal sends Ctrl-C to the program as well.
      if (info.si_code != SI_KERNEL) {
        kill(pid, info.si_signo);
      }
    }
  }
}

void printSummary(RecordStore& store) {
  const CountsByDestination counts = store.counts();
  if (sum(counts).total() == 0) {
    say("no records arrived");
    return;
  }
  std::fprintf(stderr, "\nWhat arrived:\n%s", summaryTable(counts, kSummaryWidth).c_str());
  const std::vector<StoredRecord> bad = store.read(RecordStore::Which::Bad, 0, kBadRecordsShown);
  if (!bad.empty()) {
    std::fprintf(stderr, "\nThe first bad records:\n%s", recordTable(bad, kSummaryWidth).c_str());
  }
}

int runAgainst(Services& services, const CommandLine& line, const BlockedSignals& signals) {
  const ProgramHome home(line.home);
  std::vector<std::string> added = services.environment();
  if (!home.path().empty()) {
    added.push_back("KESU_HOME=" + home.path());
  }
  say("collects at " + services.url() + ", messages at https://" + services.messagingHost() + ", home " + home.path() +
      (home.isTemporary() ? " (removed at the end)" : ""));
  const Started started = startProgram(line.child, environmentWith(ownEnvironment(), added), signals);
  if (started.error != 0) {
    say("cannot run " + line.child.front() + ": " + std::strerror(started.error));
    return started.error == ENOENT ? kNotFound : kNotRunnable;
  }
  const int status = waitForProgram(started.pid, signals);
  services.settle();
  services.stop();
  printSummary(services.store());
  if (!line.services.messages.empty()) {
    std::fprintf(stderr, "\nMessages:\n%s", messageTable(services.messaging().report(), kSummaryWidth).c_str());
  }
  return status;
}

}  // namespace

int runProgram(const CommandLine& line) {
  const BlockedSignals signals;
  std::string error;
  const std::unique_ptr<Services> services = Services::start(line.services, error);
  ReadyFile readyFile;
  if (services == nullptr || !readyFile.write(line.readyFile, *services)) {
    say(error.empty() ? "cannot write the ready file " + line.readyFile : error);
    return 1;
  }
  return runAgainst(*services, line, signals);
}

std::vector<std::string> environmentWith(const std::vector<std::string>& environment,
                                         const std::vector<std::string>& replacements) {
  const auto nameOf = [](const std::string& entry) { return entry.substr(0, entry.find('=')); };
  std::vector<std::string> result;
  for (const std::string& entry : environment) {
    const bool replaced = std::any_of(replacements.begin(), replacements.end(),
                                      [&](const std::string& other) { return nameOf(other) == nameOf(entry); });
    if (!replaced) {
      result.push_back(entry);
    }
  }
  result.insert(result.end(), replacements.begin(), replacements.end());
  return result;
}

}  // namespace kesu::dev
