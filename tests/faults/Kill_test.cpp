// What a process leaves behind that is killed at any moment: every record whose call had returned reaches the collector
// through the next process, and what an earlier session reports is reported once.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "testing/TemporaryDirectory.h"
#include "tests/faults/HostProcess.h"
#include "tests/faults/NumberedCollector.h"

namespace kesu {
namespace {

using testing::HostProcess;
using testing::NumberedCollector;
using Mode = NumberedCollector::Mode;

// Rounds on one home directory: each leaves a segment of the log, of which a process takes 64.
constexpr int kRoundsOfHome = 50;

constexpr double kSecondsUntilAllArrive = 120;
constexpr std::size_t kMostInFlight = 256;

int homes() {
  return std::getenv("KESU_LONG_TESTS") != nullptr ? 10 : 1;
}

int rounds() {
  return KESU_KILL_ROUNDS < kRoundsOfHome ? KESU_KILL_ROUNDS : kRoundsOfHome;
}

std::string textOf(const Dictionary& record, std::string_view key) {
  const std::string* text = record.findText(key);
  return text != nullptr ? *text : "";
}

class Kill : public ::testing::Test {
 protected:
  /// Kills hosts that post to a collector in this mode, one after the other on one home; then one lives to deliver.
  void killAgainAndAgain(Mode mode, const std::string& flood) {
    for (int home = 0; home < homes(); ++home) {
      const testing::TemporaryDirectory directory;
      NumberedCollector collector;
      collector.setMode(mode);
      std::set<std::int64_t> acknowledged;
      for (int round = 0; round < rounds(); ++round) {
        acknowledged.merge(acknowledgedUntilKilled(directory.path(), collector, flood, round));
        const NumberedCollector::Round seen = collector.endRound();
        EXPECT_EQ(seen.repeats, 0U) << "one process has sent a record twice";
        EXPECT_LE(seen.copies, kMostInFlight) << "copies of more than what was under way";
      }
      collector.setMode(Mode::Up);
      HostProcess last(directory.path(), collector.url(), {"launch", "serve"});
      const auto missing = collector.missingAfter(acknowledged, kSecondsUntilAllArrive);
      EXPECT_EQ(missing, std::set<std::int64_t>()) << "lost of " << acknowledged.size();
      EXPECT_EQ(last.wait(), 0);
      EXPECT_GT(acknowledged.size(), static_cast<std::size_t>(rounds())) << "no host lived long enough";
      std::set<std::string> identities;
      for (const auto& [number, identity] : collector.identities()) {
        identities.insert(identity);
      }
      EXPECT_EQ(identities.size(), 1U) << "the identity of the installation changed";
    }
  }

  std::set<std::int64_t> acknowledgedUntilKilled(const std::string& home, const NumberedCollector& collector,
                                                 const std::string& flood, int round) {
    const int first = (round + 1) * 1'000'000;
    HostProcess host(home, collector.url(), {"launch", "flood=" + std::to_string(first) + flood});
    if (round % 5 != 0) {  // Each fifth may die before it has begun.
      EXPECT_TRUE(host.waitForLine("ack " + std::to_string(first)));
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 60'000));  // The moment of death.
    host.kill();
    return host.acknowledged();
  }

  /// The state changes that were accepted, without copies, as their letters.
  static std::vector<Dictionary> statesIn(const std::vector<Dictionary>& records) {
    std::vector<Dictionary> states;
    std::set<std::string> known;
    for (const Dictionary& record : records) {
      if (!textOf(record, "~ns").empty() && known.insert(textOf(record, "msg_id")).second) {
        states.push_back(record);
      }
    }
    return states;
  }

  /// Waits for `count` state changes without copies.
  static std::vector<Dictionary> statesAt(NumberedCollector& collector, std::size_t count) {
    for (std::size_t records = count;; ++records) {
      const std::size_t before = collector.others().size();  // First: what arrives from here on is waited for.
      std::vector<Dictionary> states = statesIn(collector.others());
      if (states.size() >= count || collector.others(std::max(before + 1, records), 20).size() == before) {
        return states;
      }
    }
  }

  std::mt19937 random{20170315};
};

TEST_F(Kill, LosesNothingWhileTheCollectorIsUp) {
  killAgainAndAgain(Mode::Up, "");
}

TEST_F(Kill, LosesNothingOfAHostThatDoesNotPump) {
  killAgainAndAgain(Mode::Up, ",quiet");
}

TEST_F(Kill, LosesNothingWhileTheCollectorRefuses) {
  killAgainAndAgain(Mode::Refusing, "");
}

TEST_F(Kill, LosesNothingWhileTheCollectorHangs) {
  killAgainAndAgain(Mode::Hanging, "");
}

TEST_F(Kill, LosesNothingWhileTheCollectorFails) {
  killAgainAndAgain(Mode::Failing, "");
}

TEST_F(Kill, LosesNothingOfALogThatWasRemoved) {
  const testing::TemporaryDirectory home;
  NumberedCollector collector;
  collector.setMode(Mode::Hanging);
  HostProcess host(home.path(), collector.url(), {"launch", "flood=1"});
  ASSERT_TRUE(host.waitForLine("ack 300"));
  std::filesystem::remove_all(home / "Library/Outbox");
  ASSERT_TRUE(host.waitForLine("log 0 Files of the outbox were removed or hidden. What waits is written again."));
  host.kill();
  collector.setMode(Mode::Up);
  HostProcess next(home.path(), collector.url(), {"launch", "serve"});
  EXPECT_EQ(collector.missingAfter(host.acknowledged(), kSecondsUntilAllArrive), std::set<std::int64_t>());
  EXPECT_EQ(next.wait(), 0);
}

TEST_F(Kill, SendsNothingAgainThatWasAnsweredBefore) {
  const testing::TemporaryDirectory home;
  NumberedCollector collector;
  std::set<std::int64_t> early;
  for (std::int64_t number = 1; number <= 300; ++number) {
    early.insert(number);
  }
  HostProcess host(home.path(), collector.url(), {"launch", "post=1,300", "turns=50", "flood=1000"});
  ASSERT_EQ(collector.missingAfter(early, kSecondsUntilAllArrive), std::set<std::int64_t>());
  std::set<std::int64_t> later;  // Once these have arrived, the answers to the early ones were read.
  for (std::int64_t number = 1000; number < 1000 + 2 * static_cast<std::int64_t>(kMostInFlight); ++number) {
    later.insert(number);
  }
  ASSERT_EQ(collector.missingAfter(later, kSecondsUntilAllArrive), std::set<std::int64_t>());
  host.kill();
  HostProcess next(home.path(), collector.url(), {"launch", "post=9999999,1", "serve"});
  const std::set<std::int64_t> all = host.acknowledged();
  EXPECT_EQ(collector.missingAfter(all, kSecondsUntilAllArrive), std::set<std::int64_t>());
  EXPECT_EQ(collector.missingAfter({9999999}, kSecondsUntilAllArrive), std::set<std::int64_t>());
  EXPECT_EQ(next.wait(), 0);
  const auto counts = collector.byNumber();
  for (const std::int64_t number : early) {
    EXPECT_EQ(counts.at(number), 1) << number;
  }
}

TEST_F(Kill, ReportsTheFlowsOfASessionOnceWhenKilledInTheBackground) {
  for (const Mode mode : {Mode::Refusing, Mode::Up}) {
    for (const int milliseconds : {0, 2, 5, 10, 20}) {
      SCOPED_TRACE(::testing::Message() << "killed after " << milliseconds << " ms");
      const testing::TemporaryDirectory home;
      NumberedCollector collector;
      collector.setMode(mode);
      HostProcess host(home.path(), collector.url(),
                       {"launch", "screen=Home", "gone=Home", "event=Play", "screen=Menu", "background", "serve"});
      ASSERT_TRUE(host.waitForLine("background"));
      std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));  // The moment of death.
      host.kill();
      collector.endRound();
      collector.setMode(Mode::Up);
      HostProcess next(home.path(), collector.url(), {"launch", "screen=Help", "gone=Help", "background", "serve"});
      // Of the first session: launch, three of screens, the end; the same of the second, with two of screens.
      const std::vector<Dictionary> states = statesAt(collector, 9);
      EXPECT_EQ(next.wait(), 0);
      std::vector<std::string> flows;
      for (const Dictionary& state : states) {
        EXPECT_EQ(textOf(state, "~uf") + textOf(state, "~cfqt"), "") << "the session was not interrupted";
        if (textOf(state, "~ns") == "b") {
          flows.push_back(textOf(state, "~sf").substr(0, 8) + textOf(state, "~ef"));
        }
      }
      std::sort(flows.begin(), flows.end());
      EXPECT_EQ(flows, (std::vector<std::string>{"$$Help~~", "$$Home~~$$Play~~0"}));
    }
  }
}

TEST_F(Kill, ReportsATerminationOnceForEachHostThatEndsInOrder) {
  using Texts = std::multiset<std::string>;
  const struct {
    std::vector<std::string> ending;  // After a launch, three changes of screens and an event.
    Texts states;                     // Those of the application, the next launch included, with their event flow.
  } cases[] = {{{}, {"l", "t$$Play~~0", "l"}},  // It returns from main().
               {{"exit"}, {"l", "t$$Play~~0", "l"}},
               {{"forks=3"}, {"l", "t$$Play~~0", "l"}},
               {{"end"}, {"l", "t$$Play~~0", "l"}},
               {{"background"}, {"l", "b$$Play~~0", "t", "l"}},
               {{"end", "foreground"}, {"l", "t$$Play~~0", "r", "t", "l"}},
               {{"_exit"}, {"l", "l interrupted"}},
               {{"crash"}, {"l", "l interrupted"}}};
  for (const auto& [ending, expected] : cases) {
    SCOPED_TRACE(ending.empty() ? "return" : ending.front());
    const testing::TemporaryDirectory home;
    NumberedCollector collector;
    std::vector<std::string> commands = {"launch", "screen=Home", "gone=Home", "event=Play", "screen=Menu"};
    commands.insert(commands.end(), ending.begin(), ending.end());
    HostProcess(home.path(), collector.url(), commands).wait();
    HostProcess next(home.path(), collector.url(), {"launch", "post=1,1", "serve"});
    // The last one to be sent: a state too many is under way before.
    EXPECT_EQ(collector.missingAfter({1}, kSecondsUntilAllArrive), std::set<std::int64_t>());
    Texts seen;
    for (const Dictionary& state : statesAt(collector, 3 + expected.size())) {
      const std::string code = textOf(state, "~ns");
      if (code != "a" && code != "d") {
        seen.insert(code + textOf(state, "~ef") + (textOf(state, "~cfqt").empty() ? "" : " interrupted"));
      }
    }
    EXPECT_EQ(seen, expected);
  }
}

TEST_F(Kill, ReportsEachInterruptedRunUnderItsVersionsAndTime) {
  const testing::TemporaryDirectory home;
  NumberedCollector collector;
  collector.setMode(Mode::Refusing);
  const auto launch = [&](const std::string& version, const std::vector<std::string>& commands) {
    home.write("Info.plist", "<plist version=\"1.0\"><dict><key>CFBundleShortVersionString</key><string>" + version +
                                 "</string><key>CFBundleVersion</key><string>r" + version + "</string></dict></plist>");
    return std::make_unique<HostProcess>(home / "home", collector.url(), commands,
                                         std::vector<std::string>{"KESU_TEST_BUNDLE=" + home.path()});
  };
  launch("1", {"launch", "screen=Home", "gone=Home", "screen=Player", "crash"})->wait();
  launch("2", {"launch", "screen=Menu", "gone=Menu", "crash"})->wait();
  collector.setMode(Mode::Up);
  const auto last = launch("3", {"launch", "serve"});
  const std::vector<Dictionary> states = statesAt(collector, 8);
  EXPECT_EQ(last->wait(), 0);
  std::map<std::string, std::string> launches;  // By the time that they report.
  std::string osVersion;
  for (const Dictionary& state : states) {
    const std::string interrupted = textOf(state, "~cfqt");
    if (textOf(state, "~ns") != "l") {
      EXPECT_EQ(interrupted, "");
      continue;
    }
    EXPECT_TRUE(interrupted.empty() || interrupted == textOf(state, "ace"));
    EXPECT_FALSE(textOf(state, "ov").empty());
    launches[interrupted] = textOf(state, "av") + " " + textOf(state, "rv") + " " + textOf(state, "~uf").substr(0, 8);
  }
  std::vector<std::string> inOrder;
  for (const auto& [time, report] : launches) {
    inOrder.push_back(report);
  }
  EXPECT_EQ(inOrder, (std::vector<std::string>{"1 r1 ", "1 r1 $$Home~~", "2 r2 $$Menu~~"}));
}

}  // namespace
}  // namespace kesu
