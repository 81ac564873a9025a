#include "platform/linux/LinuxUrlOpener.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

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

bool becomesTrue(const std::function<bool()>& condition) {
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
  EXPECT_TRUE(becomesTrue([&] { return fs::exists(directory / "url"); }));
  EXPECT_EQ(directory.read("url"), url);
  EXPECT_TRUE(becomesTrue(hasNoChildren));
  environment.set("PATH", "/nonexistent");
  EXPECT_FALSE(LinuxUrlOpener().open(url));
}

}  // namespace
}  // namespace kesu
