#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/records/TestRecord.h"

namespace kesu::dev {
namespace {

constexpr int kPatienceMs = 60'000;

// The real program as a process of its own; its standard output is read here, its standard error is thrown away.
class ProgramTest : public ::testing::Test {
 protected:
  ProgramTest() { environment_.set("TMPDIR", temporary_.path()); }
  ~ProgramTest() override { close(output_); }

  void start(std::vector<std::string> arguments) {
    std::string program = KESU_DEV_PROGRAM;
    std::vector<char*> pointers{program.data()};
    for (std::string& argument : arguments) {
      pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    close(output_);
    output_ = ends[0];
    text_.clear();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    EXPECT_EQ(posix_spawn(&pid_, KESU_DEV_PROGRAM, &actions, nullptr, pointers.data(), environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
  }

  // Reads until `enough` stands in the output, or every process that could still write has ended.
  std::string output(const std::string& enough = std::string(1, '\0')) {
    pollfd entry{output_, POLLIN, 0};
    std::array<char, 1024> piece{};
    ssize_t size = 1;
    while (size > 0 && text_.find(enough) == std::string::npos) {
      if (poll(&entry, 1, kPatienceMs) <= 0) {
        return text_ + "(time is up)";
      }
      size = read(output_, piece.data(), piece.size());
      text_.append(piece.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    }
    return text_;
  }

  int status() {
    int status = 0;
    waitpid(pid_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  int statusOf(std::vector<std::string> arguments) {
    start(std::move(arguments));
    output();
    return status();
  }

  // A program that is killed leaves its certificate behind.
  kesu::testing::TemporaryDirectory temporary_;
  kesu::testing::ScopedEnvironment environment_;
  pid_t pid_ = -1;
  int output_ = -1;
  std::string text_;
};

// What a PNG file says of its size, and how large it is.
struct PngFacts {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::size_t bytes = 0;
};

PngFacts pngFacts(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string content{std::istreambuf_iterator<char>(file), {}};
  if (content.size() < 24 || !content.starts_with("\x89PNG")) {
    return {};
  }
  const auto number = [&](std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
      value = value << 8 | static_cast<unsigned char>(content[i]);
    }
    return value;
  };
  return {number(16), number(20), content.size()};
}

TEST_F(ProgramTest, PreviewsMessagesAsPictures) {
  constexpr std::size_t kBytesOfPhotograph = 100'000;  // Half of that without the message's picture.
  const std::string picture = temporary_ / "preview.png";
  for (const char* name : {"arcade", "night-train", "sunrise"}) {
    std::filesystem::remove(picture);
    const std::string file = std::string(KESU_EXAMPLE_MESSAGES) + "/" + name + ".json";
    EXPECT_EQ(statusOf({"preview", file, "-o", picture, "--size", "1280x720"}), 0);
    const PngFacts facts = pngFacts(picture);
    EXPECT_EQ(facts.width, 1280U) << name;
    EXPECT_EQ(facts.height, 720U) << name;
    EXPECT_GT(facts.bytes, kBytesOfPhotograph) << name;
  }
  std::filesystem::remove(picture);
  EXPECT_TRUE(std::filesystem::is_empty(temporary_.path())) << "no home is left behind";
  EXPECT_NE(statusOf({"preview", "/no/such/message.json", "-o", picture}), 0);
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(ProgramTest, EndsWithTheProgramsStatus) {
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "sh", "-c", "exit 7"}), 7);
}

TEST_F(ProgramTest, TellsASignalByItsNumber) {
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "sh", "-c", "kill -KILL $$"}), 128 + SIGKILL);
}

TEST_F(ProgramTest, SaysWhenThereIsNoProgram) {
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "/no/such/program"}), 127);
}

TEST_F(ProgramTest, GivesTheProgramAddressesAndAHomeThatGoesAway) {
  start({"run", "--port", "0", "--", "sh", "-c",
         "env -u X | grep ^KESU_ | sed s/[0-9][0-9][0-9][0-9]*$/PORT/; test -s $KESU_CA_FILE && echo trusted; printf "
         "'home %s' $KESU_HOME; touch $KESU_HOME/x"});
  const std::string text = output();
  EXPECT_EQ(status(), 0);
  EXPECT_NE(text.find("KESU_REACHABILITY_HOST=127.0.0.1:PORT\n"), std::string::npos) << text;
  EXPECT_NE(text.find("KESU_OVERRIDE_SERVER=http://127.0.0.1:"), std::string::npos) << text;
  EXPECT_NE(text.find("KESU_MESSAGING_HOST=127.0.0.1:PORT\n"), std::string::npos) << text;
  EXPECT_NE(text.find("trusted\n"), std::string::npos) << text;
  const std::string home = text.substr(text.find("home ") + 5);
  EXPECT_TRUE(home.starts_with("/")) << home;
  EXPECT_FALSE(std::filesystem::exists(home)) << home;
}

TEST_F(ProgramTest, HandsTerminationOn) {
  start(
      {"run", "--port", "0", "--", "sh", "-c", "trap 'echo bye; exit 3' TERM; echo up; while :; do sleep 0.05; done"});
  output("up");
  kill(pid_, SIGTERM);
  EXPECT_NE(output("bye").find("bye"), std::string::npos);
  EXPECT_EQ(status(), 3);
}

TEST_F(ProgramTest, TakesTheProgramAlongWhenKilled) {
  // Nobody is left to remove a temporary home.
  start({"run", "--port", "0", "--home", ::testing::TempDir(), "--", "sh", "-c", "echo up; exec sleep 600"});
  output("up");
  kill(pid_, SIGKILL);
  EXPECT_EQ(output(), "up\n") << "the program still holds the pipe";
  EXPECT_EQ(status(), -SIGKILL);
}

TEST_F(ProgramTest, ShowAndTailPrintWhatACollectorHolds) {
  std::string error;
  Services::Options options;
  options.port = 0;
  const auto services = Services::start(options, error);
  ASSERT_NE(services, nullptr) << error;
  services->store().add(testStored("e"));
  start({"show", "--url", services->url(), "--width", "100"});
  EXPECT_NE(output().find("e events     LevelStarted  world=ice\n"), std::string::npos) << text_;
  EXPECT_EQ(status(), 0);
  start({"tail", "--all", "-f", "json", "--url", services->url()});
  EXPECT_NE(output("}}\n").find("{\"id\":1,"), std::string::npos) << text_;
  kill(pid_, SIGTERM);
  EXPECT_EQ(status(), -SIGTERM);
  start({"messages", "--url", services->url()});
  EXPECT_NE(output().find("delivered  buttons pressed\n"), std::string::npos) << text_;
  EXPECT_EQ(statusOf({"show", "--url", "http://127.0.0.1:1"}), 1);
}

TEST_F(ProgramTest, ServeEndsOnTerminationAndRemovesItsReadyFile) {
  const std::string file =
      (std::filesystem::temp_directory_path() / ("kesu_dev_ready_" + std::to_string(getpid()))).string();
  start({"serve", "--port", "0", "--ready-file", file});
  output("Ctrl-C");
  std::ifstream ready(file);
  const std::string written{std::istreambuf_iterator<char>(ready), {}};
  EXPECT_NE(written.find("\nKESU_MESSAGING_HOST='127.0.0.1:"), std::string::npos) << written;
  EXPECT_NE(written.find("\nKESU_CA_FILE='" + temporary_.path()), std::string::npos) << written;
  kill(pid_, SIGTERM);
  EXPECT_NE(output().find("all"), std::string::npos);
  EXPECT_EQ(status(), 0);
  EXPECT_FALSE(std::filesystem::exists(file));
}

}  // namespace
}  // namespace kesu::dev
