#include <gtest/gtest.h>
#include <kesu/platform/Platform.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "testing/ManualClock.h"
#include "testing/ManualMainLoop.h"
#include "testing/RawConnection.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

namespace fs = std::filesystem;

constexpr int kRecords = 200;

/// Sends a record to a server; it is stored when it does not arrive.
void postRecord(int port, int number) {
  Platform& platform = Platform::current();
  platform.background.post([&platform, port, number] {
    HttpRequest request;
    request.url = "http://127.0.0.1:" + std::to_string(port) + "/";
    platform.http.send(request, [&platform, number](const HttpReply&) {
      platform.background.post([&platform, number] {
        platform.files.writeAtomically(platform.files.documentsDirectory() + "/" + std::to_string(number), "record");
        platform.defaults.set(std::to_string(number), number);
      });
    });
  });
}

/// How a process comes to call exit() in a task of the library, which then cannot be waited for.
struct Ending {
  const char* name;
  void (*end)();
};

const Ending kEndings[] = {{"InMainLoopTask",
                            [] {
                              MainLoop::shared().post([] { std::exit(0); });
                              MainLoop::shared().run();
                            }},
                           {"InBackgroundTask", [] {
                              Platform::current().background.post([] { std::exit(0); });
                              for (;;) {
                                ::pause();
                              }
                            }}};

class ProcessEndDeathTest : public ::testing::TestWithParam<Ending> {
 protected:
  void run() {
    PlatformOptions options;
    options.homeDirectory = home_.path();
    installLinuxPlatform(options);
    const testing::SilentServer server;
    for (int number = 0; number < kRecords; ++number) {
      postRecord(server.port(), number);
    }
    GetParam().end();
  }

  long storedCount() const {
    return std::distance(fs::directory_iterator(home_ / "Documents"), fs::directory_iterator());
  }

  testing::TemporaryDirectory home_;
};

TEST_P(ProcessEndDeathTest, StoresEveryRecordThatHasNoReply) {
  EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "");
  EXPECT_EQ(storedCount(), kRecords);
}

INSTANTIATE_TEST_SUITE_P(Exit, ProcessEndDeathTest, ::testing::ValuesIn(kEndings),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST(LinuxPlatformDeathTest, TakesTheHostsSettingsOnce) {
  const auto run = [] {
    const testing::TemporaryDirectory directory;
    directory.write("Info.plist", "<plist><dict><key>CFBundleIdentifier</key><string>tv.app</string></dict></plist>");
    ::setenv("XDG_DATA_HOME", "/data", 1);
    ::unsetenv("KESU_HOME");
    static testing::ManualClock clock;
    static testing::ManualMainLoop loop(clock);
    std::string logged;
    PlatformOptions options;
    options.bundlePath = directory.path();
    options.collectorUrl = "http://127.0.0.1:8080/";
    options.clock = &clock;
    options.mainLoop = &loop;
    options.logSink = [&logged](int, std::string_view text) { logged = text; };
    options.urlOpener = [](const std::string& url) { return url == "https://a"; };
    const bool isFirst = installLinuxPlatform(options);
    const bool isSecond = installLinuxPlatform();
    Platform& platform = Platform::current();
    platform.log.write(0, "line");
    const bool isRight = isFirst && !isSecond && platform.files.documentsDirectory() == "/data/tv.app/Documents" &&
                         platform.bundle.infoText("KesuOverrideServer") == "http://127.0.0.1:8080/" &&
                         platform.clock.now() == clock.now() && &MainLoop::shared() == &loop && logged == "line" &&
                         platform.urlOpener.open("https://a") && !platform.urlOpener.open("https://b");
    std::exit(isRight ? 0 : 1);
  };
  EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kesu
