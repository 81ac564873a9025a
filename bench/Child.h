#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kesu::bench {

/// The result of another process.
struct ChildResult {
  bool ended = false;  ///< By itself, with exit status 0.
  std::string output;  ///< Its standard output.
  double startedAt = 0.0;
  double endedAt = 0.0;  ///< When the process had ended, by secondsNow().
};

/// Runs a program and waits for its end. Its standard error is this process's.
ChildResult runProgram(const std::vector<std::string>& commandLine);

/// Runs one of this program's own programs (Rows.h).
ChildResult runOwn(const std::string& program, std::vector<std::string> arguments);

/// The path of this program.
std::string ownPath();

/// Another process, killed by the destructor. Its output is dropped.
class Server {
 public:
  explicit Server(const std::vector<std::string>& commandLine);
  ~Server();

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

 private:
  pid_t process_ = -1;
};

}  // namespace kesu::bench
