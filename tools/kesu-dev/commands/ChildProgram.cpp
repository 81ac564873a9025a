#include "tools/kesu-dev/commands/ChildProgram.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>

namespace kesu::dev {
namespace {

constexpr int kPatienceSeconds = 10;  // Between being asked to end and being killed.
constexpr int kNotFound = 127;        // What a shell returns for a program that is not there.
constexpr int kBySignal = 128;

// The null-terminated form that exec wants; the texts must outlive it.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
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

std::optional<int> endedWith(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, WNOHANG) != pid) {
    return std::nullopt;
  }
  return WIFSIGNALED(status) ? kBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace

StartedProgram startProgram(std::vector<std::string> arguments, std::vector<std::string> environment,
                            const BlockedSignals& signals) {
  StartedProgram started;
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

std::vector<std::string> ownEnvironment() {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    result.emplace_back(*entry);
  }
  return result;
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
