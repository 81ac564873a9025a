#pragma once

#include <sys/types.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace kesu::testing {

/// A process of kesu_test_host; its commands are described in host/main.cpp. It is killed when the object is destroyed.
class HostProcess {
 public:
  /// Starts it. `environment`: "NAME=VALUE", in addition to that of this process.
  HostProcess(const std::string& home, const std::string& collectorUrl, const std::vector<std::string>& commands,
              const std::vector<std::string>& environment = {});
  ~HostProcess();

  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  /// Reads until the host has written that line; false when it ended before, or after `seconds`.
  bool waitForLine(const std::string& line, double seconds = 60);

  /// Reads what it has written by now.
  void readLines();

  /// Ends the command "serve".
  void closeInput();

  /// Kills it and reads what it had written.
  void kill();

  /// Waits for its end. Returns the exit status; -1 when it was ended by a signal or has not ended after `seconds` (it
  /// is killed then).
  int wait(double seconds = 60);

  pid_t id() const { return process_; }
  const std::string& home() const { return home_; }

  /// The lines read so far.
  const std::vector<std::string>& lines() const { return lines_; }

  /// The numbers acknowledged in them.
  std::set<std::int64_t> acknowledged() const;

 private:
  bool readSome(double seconds);
  void reap();

  const std::string home_;
  pid_t process_ = -1;
  int input_ = -1;
  int output_ = -1;
  int status_ = -1;
  std::string unfinished_;
  std::vector<std::string> lines_;
};

}  // namespace kesu::testing
