#include "platform/linux/LinuxLogSink.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <regex>

#include "platform/linux/base/UniqueFd.h"

namespace kesu {
namespace {

class LogSinkTest : public ::testing::Test {
 protected:
  LogSinkTest() {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    reader_ = UniqueFd(ends[0]);
    writer_ = UniqueFd(ends[1]);
  }

  // Everything that is in the pipe.
  std::string read() {
    std::string text;
    char buffer[4096];
    for (pollfd wanted{reader_.get(), POLLIN, 0}; ::poll(&wanted, 1, 0) == 1;) {
      text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(0, ::read(reader_.get(), buffer, sizeof buffer))));
    }
    return text;
  }

  UniqueFd reader_;
  UniqueFd writer_;
};

TEST_F(LogSinkTest, WritesTimeAndProcessBeforeTheText) {
  LinuxLogSink sink(nullptr, writer_.get());
  sink.write(0, "one\ntwo %s");
  sink.write(3, std::string(10'000, 'x'));
  const std::string prefix = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \S+\[)" + std::to_string(::getpid()) + R"(\] )";
  const std::string text = read();
  EXPECT_TRUE(
      std::regex_match(text.substr(0, text.find("\n", text.find('\n') + 1)), std::regex(prefix + "one\ntwo %s")))
      << text.substr(0, 100);
  EXPECT_TRUE(text.ends_with(std::string(10'000, 'x') + "\n"));
}

TEST_F(LogSinkTest, DropsAndCountsLinesForAFullPipe) {
  LinuxLogSink sink(nullptr, writer_.get());
  for (int line = 0; line < 3000; ++line) {
    sink.write(0, std::string(100, 'x'));
  }
  const std::string before = read();
  const auto written = std::ranges::count(before, '\n');
  EXPECT_LT(written, 3000);
  sink.write(0, "last");
  EXPECT_NE(read().find("(" + std::to_string(3000 - written) + " lines lost) last\n"), std::string::npos);
}

TEST_F(LogSinkTest, SurvivesClosedPipe) {
  LinuxLogSink sink(nullptr, writer_.get());
  reader_.reset();
  sink.write(0, "not read by anyone");
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(LogSinkTest, ForwardsLinesToTheHost) {
  std::string got;
  LinuxLogSink sink([&](int level, std::string_view text) { got = std::to_string(level) + std::string(text); },
                    writer_.get());
  sink.write(2, "text");
  EXPECT_EQ(got, "2text");
  EXPECT_EQ(read(), "");
  sink.stopForwarding();
  sink.write(2, "at exit");
  EXPECT_EQ(got, "2text");
  EXPECT_TRUE(read().ends_with("at exit\n"));
}

}  // namespace
}  // namespace kesu
