#include "tests/faults/HostProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace kesu::testing {
namespace {

using HostClock = std::chrono::steady_clock;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

double secondsUntil(HostClock::time_point end) {
  return std::chrono::duration<double>(end - HostClock::now()).count();
}

HostClock::time_point after(double seconds) {
  return HostClock::now() + std::chrono::duration_cast<HostClock::duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

HostProcess::HostProcess(const std::string& home, const std::string& collectorUrl,
                         const std::vector<std::string>& commands, const std::vector<std::string>& environment)
    : home_(home) {
  std::vector<std::string> arguments = {KESU_TEST_HOST, home, collectorUrl};
  arguments.insert(arguments.end(), commands.begin(), commands.end());
  std::vector<std::string> variables = environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    variables.emplace_back(*variable);
  }
  int in[2] = {-1, -1};
  int out[2] = {-1, -1};
  if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) {
    throw std::runtime_error("HostProcess: no pipe");
  }
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  const int error = ::posix_spawn(&process_, KESU_TEST_HOST, &actions, nullptr, pointersTo(arguments).data(),
                                  pointersTo(variables).data());
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(in[0]);
  ::close(out[1]);
  input_ = in[1];
  output_ = out[0];
  if (error != 0) {
    throw std::runtime_error("HostProcess: cannot start " KESU_TEST_HOST);
  }
}

HostProcess::~HostProcess() {
  kill();
  ::close(output_);
}

bool HostProcess::waitForLine(const std::string& line, double seconds) {
  const auto end = after(seconds);
  std::size_t seen = 0;
  for (;;) {
    for (; seen < lines_.size(); ++seen) {
      if (lines_[seen] == line) {
        return true;
      }
    }
    if (!readSome(secondsUntil(end))) {
      return false;
    }
  }
}

void HostProcess::readLines() {
  while (readSome(0)) {
  }
}

void HostProcess::closeInput() {
  if (const int input = std::exchange(input_, -1); input >= 0) {
    ::close(input);
  }
}

void HostProcess::kill() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    constexpr double kSecondsToDie = 60;
    while (readSome(kSecondsToDie)) {
    }
    reap();
  }
}

int HostProcess::wait(double seconds) {
  closeInput();
  const auto end = after(seconds);
  while (readSome(secondsUntil(end))) {
  }
  if (process_ > 0 && secondsUntil(end) <= 0) {
    kill();
  }
  reap();
  return status_;
}

// Returns false at the end of the output, and when there is none within the time.
bool HostProcess::readSome(double seconds) {
  pollfd source{.fd = output_, .events = POLLIN, .revents = 0};
  if (::poll(&source, 1, std::max(0, static_cast<int>(seconds * 1000))) != 1) {
    return false;
  }
  char bytes[16384];
  const ssize_t count = ::read(output_, bytes, sizeof bytes);
  if (count <= 0) {
    return count < 0 && errno == EINTR;
  }
  unfinished_.append(bytes, static_cast<std::size_t>(count));
  std::size_t start = 0;
  for (std::size_t end; (end = unfinished_.find('\n', start)) != std::string::npos; start = end + 1) {
    lines_.push_back(unfinished_.substr(start, end - start));
  }
  unfinished_.erase(0, start);
  return true;
}

void HostProcess::reap() {
  closeInput();
  if (const pid_t process = std::exchange(process_, -1); process > 0) {
    int status = 0;
    ::waitpid(process, &status, 0);
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
}

std::set<std::int64_t> HostProcess::acknowledged() const {
  std::set<std::int64_t> numbers;
  for (const std::string& line : lines_) {
    if (line.starts_with("ack ")) {
      numbers.insert(std::strtoll(line.c_str() + 4, nullptr, 10));
    }
  }
  return numbers;
}

}  // namespace kesu::testing
