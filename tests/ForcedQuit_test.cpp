// What is reported of a session that ended by kill -9: the flow and the time of the last appearance, once, with the
// next launch, whatever the moment of death.
#include <gtest/gtest.h>
#include <kesu.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <sstream>
#include <thread>

#include "foundation/Json.h"
#include "foundation/NumberText.h"
#include "testing/FakeHttpClient.h"
#include "testing/ManualClock.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr const char* kScreens[] = {"Home", "Player", "Menu", "Help"};

int quitRounds() {
  return std::getenv("KESU_LONG_TESTS") != nullptr ? 100 : 25;
}

/// The flows in the user defaults.
struct Kept {
  std::string screens;
  std::string lastAppearance;
  std::string events;
  friend bool operator==(const Kept&, const Kept&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Kept& kept) {
    return out << kept.screens << " " << kept.lastAppearance << " " << kept.events;
  }
};

/// One step of the session. Both sides throw the same dice, so that the test knows what the child does.
struct Step {
  explicit Step(std::mt19937& random)
      : kind(static_cast<int>(random() % 20)),
        screen(random() % std::size(kScreens)),
        seconds(static_cast<double>(random() % 100'000) / 10.0 + 0.01) {}

  bool isEvent() const { return kind < 5; }
  bool isBackground() const { return kind == 5; }

  int kind;
  std::size_t screen;
  double seconds;
};

/// The session as it should be remembered.
class Session {
 public:
  explicit Session(double start) : now_(start) {}

  /// The states that may be found when the process dies in this step: before, between its parts, and after.
  std::vector<Kept> play(const Step& step) {
    std::vector<Kept> states = {kept_};
    now_ += step.seconds;
    if (step.isEvent()) {
      kept_.events += std::string("$$") + kScreens[step.screen] + "~~0";
    } else if (step.isBackground()) {
      kept_ = {"", "", kept_.events};
      states.push_back(kept_);
      kept_ = {};
      resume();
    } else if (std::erase(visible_, step.screen) == 0) {
      visible_.push_back(step.screen);
      begins_[step.screen] = now_;
      kept_.lastAppearance = milliseconds(now_);
    } else if (begins_.count(step.screen) != 0) {
      const double seconds = now_ - begins_[step.screen];
      kept_.screens += std::string("$$") + kScreens[step.screen] + "~~" + fixed(seconds > 7200.0 ? 300.0 : seconds, 1);
      begins_.erase(step.screen);
    }
    states.push_back(kept_);
    return states;
  }

 private:
  void resume() {
    begins_.clear();
    for (const std::size_t screen : visible_) {
      begins_[screen] = now_;
    }
  }

  double now_;
  Kept kept_;
  std::vector<std::size_t> visible_;
  std::map<std::size_t, double> begins_;
};

/// The library in the child, on the Linux platform, with a clock of its own and a collector that never answers.
class Child {
 public:
  Child(const std::string& home, double start, int pipe) : clock_(start), pipe_(pipe) {
    PlatformOptions options;
    options.homeDirectory = home;
    options.bundlePath = home;
    options.reachabilityHost = "127.0.0.1:1";
    options.clock = &clock_;
    options.http = &http_;
    options.logSink = [](int, std::string_view) {};
    installLinuxPlatform(options);
    Kesu::initialize("key");
    Application::shared().didFinishLaunching();
    writeLine("launch " + lastState());
  }

  void play(const Step& step) {
    clock_.advance(step.seconds);
    if (step.isEvent()) {
      KesuCustomEvent::postWithEventName(kScreens[step.screen]);
    } else if (step.isBackground()) {
      Application::shared().didEnterBackground();
      Application::shared().willEnterForeground();
    } else if (std::erase(visible_, step.screen) == 0) {
      visible_.push_back(step.screen);
      screenAppeared(kScreens[step.screen]);
    } else {
      screenDisappeared(kScreens[step.screen]);
    }
    writeLine("step");
  }

  void reportBackground() {
    Application::shared().didEnterBackground();
    writeLine("background " + lastState());
  }

 private:
  /// Runs what is queued and returns the body of the last state change.
  std::string lastState() {
    do {
      Platform::current().background.drain(10.0);
    } while (http_.answerAll(200) > 0);
    for (std::size_t i = http_.requestCount(); i-- > 0;) {
      const HttpRequest request = http_.request(i);
      if (request.headers.front().second == "s") {
        return request.body;
      }
    }
    return "";
  }

  void writeLine(const std::string& line) {
    const std::string whole = line + "\n";
    if (::write(pipe_, whole.data(), whole.size()) < 0) {
      ::_exit(1);
    }
  }

  testing::ManualClock clock_;
  testing::FakeHttpClient http_;
  int pipe_;
  std::vector<std::size_t> visible_;
};

/// When a child is killed.
struct Death {
  bool isAfterLaunch = true;            ///< Counted from its first line; else from its birth.
  std::chrono::microseconds after{-1};  ///< Less than nothing: it ends by itself.
};

/// Reads what there is; false at the end.
bool readSome(int descriptor, std::string& text) {
  char bytes[4096];
  const ssize_t count = ::read(descriptor, bytes, sizeof bytes);
  text.append(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0;
}

/// Runs `body` in a child until its end or its death, and returns the whole lines that it wrote.
std::vector<std::string> linesOf(const std::function<void(int)>& body, Death death = {}) {
  int pipe[2] = {-1, -1};
  EXPECT_EQ(::pipe(pipe), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(pipe[0]);
    body(pipe[1]);
    ::_exit(0);
  }
  ::close(pipe[1]);
  std::string text;
  if (death.isAfterLaunch) {
    readSome(pipe[0], text);
  }
  std::thread killer([child, death] {
    if (death.after.count() >= 0) {
      std::this_thread::sleep_for(death.after);  // The moment of death, drawn at random.
      ::kill(child, SIGKILL);
    }
  });
  while (readSome(pipe[0], text)) {
  }
  ::close(pipe[0]);
  killer.join();
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == SIGKILL : WEXITSTATUS(status) == 0) << "status " << status;
  std::istringstream stream(text);
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line) && !stream.eof();) {
    lines.push_back(line);
  }
  return lines;
}

std::string textOf(const std::string& line, const char* key) {
  const auto body = parseJson(line.substr(line.find('{')));
  const std::string* found = body && body->dictionary() != nullptr ? body->dictionary()->findText(key) : nullptr;
  return found != nullptr ? *found : "";
}

class ForcedQuit : public ::testing::Test {
 protected:
  /// Plays the session of these dice until its death; returns the lines of the child.
  std::vector<std::string> killed(double start, unsigned seed, Death death) {
    return linesOf(
        [&](int pipe) {
          Child child(home.path(), start, pipe);
          for (std::mt19937 dice(seed);;) {
            child.play(Step(dice));
          }
        },
        death);
  }

  /// What the next launch may report after the child acknowledged that many steps.
  static std::vector<Kept> reportedAfter(std::size_t acknowledged, double start, unsigned seed) {
    std::mt19937 dice(seed);
    Session session(start);
    for (std::size_t step = 0; step < acknowledged; ++step) {
      session.play(Step(dice));
    }
    std::vector<Kept> states = session.play(Step(dice));
    for (Kept& state : states) {  // The time belongs to an interrupted flow, and waits for one without it.
      state.lastAppearance = state.screens.empty() ? "" : state.lastAppearance;
    }
    return states;
  }

  /// A launch that lives to report what the one before left behind.
  Kept report(double start) {
    const auto lines = linesOf([&](int pipe) {
      Child child(home.path(), start, pipe);
      child.reportBackground();
      child.reportBackground();
      ::_exit(0);  // The worker may still be using the child's clock.
    });
    if (lines.size() != 3) {
      ADD_FAILURE() << "the reporting child died";
      return {};
    }
    EXPECT_EQ(textOf(lines[0], "~ns") + textOf(lines[1], "~ns"), "lb");
    const std::string interrupted = textOf(lines[0], "~cfqt");
    EXPECT_EQ(textOf(lines[0], "ace"), interrupted.empty() ? milliseconds(start) : interrupted);
    EXPECT_EQ(textOf(lines[1], "~sf") + textOf(lines[1], "~uf"), "");
    EXPECT_EQ(textOf(lines[2], "~ef"), "") << "reported twice";
    return {textOf(lines[0], "~uf"), interrupted, textOf(lines[1], "~ef")};
  }

  testing::TemporaryDirectory home;
};

TEST_F(ForcedQuit, IsReportedOnceWithTheNextLaunch) {
  std::mt19937 random(20170315);
  std::size_t steps = 0;
  std::size_t interrupted = 0;
  for (int round = 0; round < quitRounds(); ++round) {
    const double start = 1489579320.0 + round * 1e7;
    const auto seed = static_cast<unsigned>(random());
    const auto lines = killed(start, seed, {round % 5 != 0, std::chrono::microseconds(random() % 60'000)});
    if (!lines.empty()) {
      EXPECT_EQ(textOf(lines[0], "~uf") + textOf(lines[0], "~cfqt"), "") << "reported twice";
    }
    const std::size_t acknowledged = lines.empty() ? 0 : lines.size() - 1;
    const auto states = reportedAfter(acknowledged, start, seed);
    const Kept found = report(start + 5e6);
    EXPECT_NE(std::find(states.begin(), states.end(), found), states.end())
        << "round " << round << " after step " << acknowledged << ": " << found << "\nexpected " << states.front()
        << "\nor " << states.back();
    steps += acknowledged;
    interrupted += found.screens.empty() ? 0U : 1U;
  }
  EXPECT_GT(steps, 0U) << "no child lived long enough to do anything";
  EXPECT_GT(interrupted, 0U) << "no child left a flow";
}

}  // namespace
}  // namespace kesu
