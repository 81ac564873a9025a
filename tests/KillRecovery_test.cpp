// What a killed process leaves behind: every record whose store write it has seen, whole, and user defaults that are
// old or new but never broken.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <set>
#include <sstream>
#include <thread>

#include "foundation/PropertyList.h"
#include "testing/RealPlatform.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

using testing::RealPlatform;

int killRounds() {
  return std::getenv("KESU_LONG_TESTS") != nullptr ? 500 : 50;
}

/// In the child: posts events that no collector takes, and writes the name of each file down the pipe once it is
/// stored.
[[noreturn]] void postUntilKilled(const std::string& home, int acknowledge) {
  RealPlatform platform(home, "http://127.0.0.1:1/");
  Kesu::initialize("key");
  const std::string initialised = "initialised\n";
  std::set<std::string> known;
  bool ok = ::write(acknowledge, initialised.data(), initialised.size()) > 0;
  while (ok) {
    KesuCustomEvent::postWithEventName("event", {{"title", "Night Train"}});
    platform.settle();
    for (const std::string& path : platform.storedFiles()) {
      if (known.insert(path).second) {
        const std::string line = path + "\n";
        ok = ::write(acknowledge, line.data(), line.size()) > 0;
      }
    }
  }
  ::_exit(1);
}

std::string readAll(int descriptor) {
  std::string text;
  char bytes[4096];
  for (ssize_t count; (count = ::read(descriptor, bytes, sizeof bytes)) > 0;) {
    text.append(bytes, static_cast<std::size_t>(count));
  }
  return text;
}

/// Runs a child on `home` and kills it after `life`; returns the whole lines that it acknowledged.
std::vector<std::string> linesOfKilledChild(const std::string& home, std::chrono::microseconds life) {
  int pipe[2] = {-1, -1};
  EXPECT_EQ(::pipe(pipe), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(pipe[0]);
    postUntilKilled(home, pipe[1]);
  }
  ::close(pipe[1]);
  std::this_thread::sleep_for(life);  // The moment of death, drawn at random.
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
  std::istringstream text(readAll(pipe[0]));
  ::close(pipe[0]);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line) && !text.eof();) {
    lines.push_back(line);
  }
  return lines;
}

TEST(KillRecovery, KeepsEveryAcknowledgedRecordAndItsIdentity) {
  std::mt19937 random(20170315);
  std::uniform_int_distribution<int> microseconds(0, 120'000);
  std::size_t acknowledged = 0;
  testing::TemporaryDirectory home;
  std::string identifier;
  std::int64_t initialisations = 0;
  for (int round = 0; round < killRounds(); ++round) {
    const auto lines = linesOfKilledChild(home.path(), std::chrono::microseconds(microseconds(random)));
    LinuxFiles files(home.path());
    for (const std::string& line : lines) {
      if (line == "initialised") {
        ++initialisations;
        continue;
      }
      ++acknowledged;
      const auto record = parsePropertyList(files.read(line, 1'000'000).bytes);
      ASSERT_TRUE(record) << "torn or missing: " << line;
      EXPECT_EQ(*record->dictionary()->findText("title"), "Night Train");
      files.remove(line);
    }
    LinuxUserDefaults defaults(files.preferencesDirectory());
    const std::string found = defaults.text("localKaid");
    ASSERT_TRUE(identifier.empty() || found == identifier) << "the identity of the installation changed";
    identifier = found;
    EXPECT_GE(defaults.integer("alc"), initialisations);
    EXPECT_LE(defaults.integer("alc"), round + 1);
    // The store's counter only grows, and removes a file when it passes its limit; the next round starts at 0.
    defaults.set("~numberOfFiles", 0);
    defaults.synchronize();
  }
  EXPECT_GT(acknowledged, 0U) << "no child lived long enough to store anything";
  EXPECT_FALSE(home.path().empty() || identifier.empty());
}

}  // namespace
}  // namespace kesu
