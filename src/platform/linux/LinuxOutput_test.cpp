#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <regex>
#include <thread>

#include "platform/linux/LinuxLogSink.h"
#include "platform/linux/LinuxUrlOpener.h"
#include "platform/linux/base/UniqueFd.h"
#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

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

TEST_F(LogSinkTest, DropsWhatFullPipeDoesNotTakeAndSaysSo) {
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
  sink.write(0, "nobody reads this");
  sigset_t pending;
  sigpending(&pending);
  EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
}

TEST_F(LogSinkTest, HandsLinesToTheHost) {
  std::string got;
  LinuxLogSink sink([&](int level, std::string_view text) { got = std::to_string(level) + std::string(text); },
                    writer_.get());
  sink.write(2, "text");
  EXPECT_EQ(got, "2text");
  EXPECT_EQ(read(), "");
}

TEST(LinuxUrlOpener, RefusesWhatMustNotLeaveTheApplication) {
  const std::pair<std::string, bool> cases[] = {{"https://example.com/a b?c=\xC3\xA4", true},
                                                {"HTTP://example.com", true},
                                                {"tv-app.v2+x://open/1", true},
                                                {"mailto:a@example.com", true},
                                                {"", false},
                                                {"example.com", false},
                                                {"/etc/passwd", false},
                                                {"-version", false},
                                                {"--help:x", false},
                                                {"1http://example.com", false},
                                                {":nothing", false},
                                                {"file:///etc/passwd", false},
                                                {"FiLe:/etc/passwd", false},
                                                {" file:///etc/passwd", false},
                                                {"javascript:alert(1)", false},
                                                {"  JavaScript:alert(1)", false},
                                                {"java\tscript:alert(1)", false},
                                                {"vbscript:x", false},
                                                {"data:text/html,x", false},
                                                {"https://example.com/\n", false},
                                                {"https://example.com/\x7F", false},
                                                {std::string("https://a\0b", 11), false},
                                                {" https://example.com", false}};
  for (const auto& [url, expected] : cases) {
    std::vector<std::string> opened;
    LinuxUrlOpener opener([&opened](const std::string& given) {
      opened.push_back(given);
      return true;
    });
    EXPECT_EQ(opener.open(url), expected) << url;
    EXPECT_EQ(opened, expected ? std::vector<std::string>{url} : std::vector<std::string>()) << url;
  }
}

bool comesTrue(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

bool hasNoChildren() {
  siginfo_t ignored;
  return ::waitid(P_ALL, 0, &ignored, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
}

TEST(LinuxUrlOpener, StartsDesktopProgramWithoutShellAndLeavesNoZombie) {
  const testing::TemporaryDirectory directory;
  directory.write("xdg-open", "#!/bin/sh\ncd " + directory.path() + "\nprintf '%s' \"$1\" > part\nmv part url\n");
  fs::permissions(directory / "xdg-open", fs::perms::owner_all);
  testing::ScopedEnvironment environment;
  environment.set("PATH", directory.path() + ":/usr/bin:/bin");
  const std::string url = "https://example.com/$(id);`id`'\"";
  EXPECT_TRUE(LinuxUrlOpener().open(url));
  EXPECT_TRUE(comesTrue([&] { return fs::exists(directory / "url"); }));
  EXPECT_EQ(directory.read("url"), url);
  EXPECT_TRUE(comesTrue(hasNoChildren));
  environment.set("PATH", "/nonexistent");
  EXPECT_FALSE(LinuxUrlOpener().open(url));
}

}  // namespace
}  // namespace kesu
