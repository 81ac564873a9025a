#include "Child.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "Stopwatch.h"

namespace kesu::bench {
namespace {

/// Starts a program; -1 when that fails. `output` becomes its standard output.
pid_t start(const std::vector<std::string>& commandLine, int output) {
  std::vector<std::string> words = commandLine;
  std::vector<char*> pointers;
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  pid_t process = -1;
  const int error = posix_spawnp(&process, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : -1;
}

std::string readAll(int fd) {
  std::string text;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = ::read(fd, chunk.data(), chunk.size())) > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

std::string ownPath() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

ChildResult runProgram(const std::vector<std::string>& commandLine) {
  ChildResult result;
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
    return result;
  }
  result.startedAt = secondsNow();
  const pid_t process = start(commandLine, pipe[1]);
  ::close(pipe[1]);
  result.output = readAll(pipe[0]);
  ::close(pipe[0]);
  int status = 0;
  result.ended =
      process > 0 && ::waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
  result.endedAt = secondsNow();
  return result;
}

ChildResult runOwn(const std::string& program, std::vector<std::string> arguments) {
  std::vector<std::string> commandLine{ownPath(), "--program", program};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  return runProgram(commandLine);
}

Server::Server(const std::vector<std::string>& commandLine) {
  const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  process_ = start(commandLine, nowhere);
  ::close(nowhere);
}

Server::~Server() {
  if (process_ > 0) {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }
}

}  // namespace kesu::bench
