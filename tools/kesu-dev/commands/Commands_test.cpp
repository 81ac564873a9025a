#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "testing/ScopedEnvironment.h"
#include "testing/TemporaryDirectory.h"
#include "testing/TestRecord.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/messages/ImageSize.h"

namespace kesu::dev {
namespace {

constexpr int kPatienceMs = 60'000;

// The real program as a process of its own, and what it prints.
class CommandsTest : public ::testing::Test {
 protected:
  CommandsTest() { environment_.set("TMPDIR", temporary_.path()); }
  ~CommandsTest() override { close(output_); }

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
    if (readsErrors_) {
      posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    } else {
      posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    }
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
  bool readsErrors_ = false;  // Standard error as well.
  std::string text_;
};

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

TEST_F(CommandsTest, EveryCommandHasHelp) {
  const struct {
    const char* line;
    const char* usage;
    const char* option;
  } rows[] = {
      {"--help", "Usage: kesu-dev [", "catalogue"},
      {"-h", "Usage: kesu-dev [", "--version"},
      {"help", "Usage: kesu-dev [", "preview"},
      {"serve --help", "Usage: kesu-dev serve [", "--messaging-port N"},
      {"run --strict --help", "Usage: kesu-dev run [", "--home DIR"},
      {"tail -h", "Usage: kesu-dev tail [", "--once"},
      {"show --help", "Usage: kesu-dev show [", "(default: http://127.0.0.1:8470)"},
      {"messages --help", "Usage: kesu-dev messages [", "-f,--format FORMAT"},
      {"preview --help", "Usage: kesu-dev preview [", "--size WIDTHxHEIGHT"},
      {"catalogue --help", "Usage: kesu-dev catalogue [", "-f,--format FORMAT"},
      {"keys --help", "Usage: kesu-dev keys [", "-h,--help"},
      {"version --help", "Usage: kesu-dev version [", "-h,--help"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(statusOf(words(row.line)), 0) << row.line;
    EXPECT_NE(text_.find(row.usage), std::string::npos) << row.line << ": " << text_;
    EXPECT_NE(text_.find(row.option), std::string::npos) << row.line << ": " << text_;
  }
}

TEST_F(CommandsTest, RefusesWrongUse) {
  readsErrors_ = true;
  const struct {
    const char* line;
    const char* error;
  } rows[] = {
      {"", "a command is required"},
      {"server", "not expected: server"},
      {"serve show", "not expected: show"},
      {"serve --prot 1", "--prot"},
      {"serve --port", "--port"},
      {"serve --port 65536", "--port takes a number from 0 to 65535, not 65536"},
      {"serve --port +1", "--port takes a number from 0 to 65535, not +1"},
      {"serve --messages /no/such", "--messages needs a directory, not /no/such"},
      {"serve --strict=yes", "strict"},
      {"serve --home h", "--home"},
      {"serve -- app", "not expected: --"},
      {"run", "a program behind -- is required"},
      {"run --", "a program behind -- is required"},
      {"run app", "not expected: app"},
      {"run app -- app", "not expected: app"},
      {"tail -f xml", "the format is human or json, not xml"},
      {"keys -f json", "-f"},
      {"show --width 10", "--width takes a number from 40 to 1000, not 10"},
      {"preview", "FILE is required"},
      {"preview -o c.png", "FILE is required"},
      {"preview a b", "not expected: b"},
      {"preview a -o", "--output"},
      {"preview a --size 640", "the size is WIDTHxHEIGHT, 64 to 4096 pixels each, not 640"},
      {"preview a --size x", "the size is WIDTHxHEIGHT"},
      {"preview a --size 640x99999", "the size is WIDTHxHEIGHT"},
      {"preview a --size -1x360", "the size is WIDTHxHEIGHT"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(statusOf(words(row.line)), 2) << row.line;
    EXPECT_TRUE(text_.starts_with("kesu-dev: ")) << text_;
    EXPECT_NE(text_.find(row.error), std::string::npos) << row.line << ": " << text_;
  }
  EXPECT_EQ(statusOf({"preview", "a", "-o", ""}), 2);
}

TEST_F(CommandsTest, ServesAsItsOptionsSayUntilItIsTerminated) {
  temporary_.write("tags.json", R"({"tags":["gold"]})");
  const std::string ready = temporary_ / "ready";
  start({"serve", "--port", "1", "--port", "0", "--db", temporary_ / "r.db", "--ready-file=" + ready, "--strict",
         "--messages", temporary_.path(), "--messaging-port", "0"});
  const std::string printed = output("Ctrl-C");
  const std::size_t url = printed.find("http://127.0.0.1:");
  ASSERT_NE(url, std::string::npos) << printed;
  const auto server = parseServerUrl(printed.substr(url, printed.find(',') - url));
  ASSERT_TRUE(server) << printed;
  EXPECT_NE(fetch(*server, "/health").body.find(R"("strict":true)"), std::string::npos);
  EXPECT_NE(fetch(*server, "/messages").body.find("gold"), std::string::npos);
  EXPECT_TRUE(std::filesystem::exists(temporary_ / "r.db"));
  const std::string written = contentOf(ready);
  EXPECT_NE(written.find("\nKESU_MESSAGING_HOST='127.0.0.1:"), std::string::npos) << written;
  EXPECT_NE(written.find("\nKESU_CA_FILE='" + temporary_.path()), std::string::npos) << written;
  kill(pid_, SIGTERM);
  EXPECT_NE(output().find("all"), std::string::npos);
  EXPECT_EQ(status(), 0);
  EXPECT_FALSE(std::filesystem::exists(ready));
}

TEST_F(CommandsTest, ShowsAFileOfRecords) {
  const std::string file = temporary_ / "r.db";
  std::string error;
  ASSERT_TRUE(RecordStore::open(file, error)->add(testStored("e"))) << error;
  EXPECT_EQ(statusOf({"show", "--db", file, "--width", "200"}), 0);
  EXPECT_EQ(text_.substr(text_.rfind("-\n") - 198, 199), std::string(199, '-')) << text_;
  EXPECT_EQ(statusOf({"show", "--db", file, "-f", "json"}), 0);
  EXPECT_EQ(text_.substr(0, 8), "{\"id\":1,");
  EXPECT_EQ(statusOf({"show", "--db", temporary_ / "none.db"}), 1);
}

TEST_F(CommandsTest, PrintsTables) {
  EXPECT_EQ(statusOf({"keys"}), 0);
  EXPECT_NE(text_.find("\nkaid "), std::string::npos);
  EXPECT_EQ(statusOf({"catalogue"}), 0);
  EXPECT_NE(text_.find("KesuAd"), std::string::npos);
  EXPECT_EQ(statusOf({"catalogue", "--format", "json"}), 0);
  EXPECT_EQ(text_.front(), '{');
  EXPECT_EQ(statusOf({"--version"}), 0);
  EXPECT_TRUE(text_.starts_with("kesu-dev ")) << text_;
}

TEST_F(CommandsTest, LeavesTheArgumentsOfTheProgramAlone) {
  start({"run", "--port", "0", "--home", temporary_.path(), "--", "sh", "-c", R"(printf '%s|' "$KESU_HOME" "$@")", "sh",
         "--port", "1", "--", "[a,b]", "", "--help"});
  EXPECT_EQ(output(), temporary_.path() + "|--port|1|--|[a,b]||--help|");
  EXPECT_EQ(status(), 0);
}

TEST_F(CommandsTest, PreviewsMessagesAsPictures) {
  constexpr std::size_t kBytesOfPhotograph = 100'000;  // Half of that without the message's picture.
  const std::string picture = temporary_ / "preview.png";
  for (const char* name : {"arcade", "night-train", "sunrise"}) {
    std::filesystem::remove(picture);
    const std::string file = std::string(KESU_EXAMPLE_MESSAGES) + "/" + name + ".json";
    EXPECT_EQ(statusOf({"preview", file, "-o", picture, "--size", "1280x720"}), 0);
    EXPECT_EQ(imageSize(contentOf(picture)), (ImageSize{1280, 720})) << name;
    EXPECT_GT(std::filesystem::file_size(picture), kBytesOfPhotograph) << name;
  }
  std::filesystem::remove(picture);
  EXPECT_TRUE(std::filesystem::is_empty(temporary_.path())) << "no home is left behind";
  EXPECT_NE(statusOf({"preview", "/no/such/message.json", "-o", picture}), 0);
  EXPECT_FALSE(std::filesystem::exists(picture));
}

TEST_F(CommandsTest, ReturnsHowTheProgramEnded) {
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "sh", "-c", "exit 7"}), 7);
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "sh", "-c", "kill -KILL $$"}), 128 + SIGKILL);
  EXPECT_EQ(statusOf({"run", "--port", "0", "--", "/no/such/program"}), 127);
}

TEST_F(CommandsTest, GivesTheProgramAddressesAndATemporaryHome) {
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

TEST_F(CommandsTest, ForwardsTermination) {
  start(
      {"run", "--port", "0", "--", "sh", "-c", "trap 'echo bye; exit 3' TERM; echo up; while :; do sleep 0.05; done"});
  output("up");
  kill(pid_, SIGTERM);
  EXPECT_NE(output("bye").find("bye"), std::string::npos);
  EXPECT_EQ(status(), 3);
}

TEST_F(CommandsTest, EndsTheProgramWhenKilled) {
  // A temporary home would stay behind.
  start({"run", "--port", "0", "--home", ::testing::TempDir(), "--", "sh", "-c", "echo up; exec sleep 600"});
  output("up");
  kill(pid_, SIGKILL);
  EXPECT_EQ(output(), "up\n") << "the program still has the pipe open";
  EXPECT_EQ(status(), -SIGKILL);
}

TEST_F(CommandsTest, ShowAndTailPrintTheRecordsOfACollector) {
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
  EXPECT_EQ(statusOf({"tail", "--once", "--url", services->url()}), 0);
  EXPECT_NE(text_.find("LevelStarted"), std::string::npos) << text_;
  start({"messages", "--url", services->url()});
  EXPECT_NE(output().find("delivered  buttons pressed\n"), std::string::npos) << text_;
  EXPECT_EQ(statusOf({"show", "--url", "http://127.0.0.1:1"}), 1);
}

}  // namespace
}  // namespace kesu::dev
