#pragma once

#include <kesu/platform/LogSink.h>

#include <atomic>
#include <functional>
#include <string>

namespace kesu {

/// Writes log lines to a file descriptor (standard error), or forwards them to the host's function.
///
/// A line looks like "2017-03-15 12:02:00.123 tv_app[4711] text", in local time; line ends inside the text are written
/// as they are. Each line of up to PIPE_BUF bytes is one write(2). The host is never blocked nor killed: lines that a
/// full pipe does not accept are dropped (the next written line says how many were lost), and a closed one raises no
/// SIGPIPE.
class LinuxLogSink final : public LogSink {
 public:
  using Function = std::function<void(int level, std::string_view text)>;

  /// With a `function` nothing is written here: it receives level and text unchanged.
  explicit LinuxLogSink(Function function = nullptr, int fd = 2);

  void write(int level, std::string_view text) override;

  /// Writes every later line here. At exit: what the host's function refers to may be destroyed.
  void stopForwarding() { forwards_.store(false); }

 private:
  bool put(std::string_view line) const;

  Function function_;
  std::atomic<bool> forwards_{true};
  int fd_;
  std::atomic<unsigned> lost_{0};
};

}  // namespace kesu
