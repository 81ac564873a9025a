#include "platform/linux/outbox/LogCompaction.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/linux/outbox/LinuxAppendLog.h"
#include "testing/FoundEntries.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

using testing::FoundEntry;
using testing::namesIn;
using testing::numberedText;
using testing::recoverAll;

constexpr unsigned kProcesses = 20;

class LogCompactionTest : public testing::OutboxDirectoryTest {
 protected:
  /// Processes that live at the same time, so that each appends the same numbers: 1, released; 2 and 3; 4, released.
  void leaveLogs() const {
    std::vector<std::unique_ptr<LinuxAppendLog>> logs;
    for (unsigned process = 0; process < kProcesses; ++process) {
      logs.push_back(open());
      recoverAll(*logs.back());
      logs.back()->append("gone" + textOf(process, 1), true);
      logs.back()->setPreamble("context " + std::to_string(process / 2));
      logs.back()->append(textOf(process, 2));
      logs.back()->setPreamble("");
      logs.back()->append(textOf(process, 3));
      logs.back()->append("change" + textOf(process, 4), true);
    }
  }

  static std::string textOf(unsigned process, unsigned number) { return numberedText(process * 10 + number); }

  /// The entries that wait, in order, as they should be found.
  static std::vector<std::string> expected() {
    std::vector<std::string> texts;
    for (unsigned number = 2; number <= 3; ++number) {
      for (unsigned process = 0; process < kProcesses; ++process) {
        texts.push_back(std::to_string(number) + textOf(process, number) +
                        (number == 2 ? "(context " + std::to_string(process / 2) + ")" : "()"));
      }
    }
    return texts;
  }

  static std::vector<std::string> waiting(const std::vector<FoundEntry>& found) {
    std::vector<std::string> texts;
    for (const FoundEntry& one : found) {
      if (!one.isReleased) {
        texts.push_back(std::to_string(one.entry.sequence) + one.bytes + "(" + one.preamble + ")");
      }
    }
    return texts;
  }

  /// The same in any order of logs.
  static std::multiset<std::string> sorted(const std::vector<std::string>& texts) {
    return {texts.begin(), texts.end()};
  }

  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> contents;
    for (const std::string& name : namesIn(path(), ".log")) {
      contents[name] = directory_.read("Outbox/" + name);
    }
    return contents;
  }
};

TEST_F(LogCompactionTest, MovesFewEntriesOfManyProcessesIntoOneSegment) {
  leaveLogs();
  auto log = open();
  const auto found = recoverAll(*log);
  EXPECT_EQ(found.size(), 4 * kProcesses);
  EXPECT_EQ(namesIn(path(), ".log").size(), kProcesses + 1) << "a start does not wait for the disk";
  EXPECT_TRUE(log->isRunningLow()) << "it asks for prepare()";
  log->release(found[kProcesses].entry);
  log->settle(3);
  log->prepare();
  EXPECT_EQ(namesIn(path(), ".lock").size(), 2U);
  EXPECT_EQ(namesIn(path(), ".log").size(), 2U) << "one, and that of this process";
  EXPECT_EQ(log->append("next")->sequence, 5U);
  std::string bytes;
  for (const FoundEntry& one : found) {
    if (!one.isReleased && one.entry.offset != found[kProcesses].entry.offset) {
      ASSERT_TRUE(log->read(one.entry, bytes)) << "under the place that it had";
      EXPECT_EQ(bytes, one.bytes);
    }
  }
  log = open();
  const auto moved = recoverAll(*log);
  EXPECT_EQ(moved.size(), 3 * kProcesses) << "with what is released, but not settled; and the new one";
  for (const FoundEntry& one : moved) {
    log->release(one.entry);
  }
  log->settle(5);
  log->prepare();
  EXPECT_EQ(namesIn(path(), ".log").size(), 1U);
}

TEST_F(LogCompactionTest, LeavesThemWhereTheyAreWhenTheyDoNotFit) {
  auto log = open();
  recoverAll(*log);
  const std::string text(AppendLog::kLongestEntry, 'x');
  for (std::size_t i = 0; i <= kManySegments; ++i) {
    ASSERT_TRUE(log->append(text));
  }
  log.reset();
  const auto before = namesIn(path(), ".log");
  log = open();
  EXPECT_EQ(recoverAll(*log).size(), kManySegments + 1);
  log->prepare();
  EXPECT_EQ(namesIn(path(), ".log").size(), before.size() + 1);
  EXPECT_EQ(namesIn(path(), ".lock").size(), 2U);
}

/// Puts together what may lie on the disk when the process or the power ends on the way: until the copies are safe all
/// originals and some bytes of the copies, afterwards some of the originals.
TEST_F(LogCompactionTest, AnEndOnTheWayLosesNothingAndRepeatsNothing) {
  leaveLogs();
  const auto originals = files();
  auto compacting = open();
  const auto found = recoverAll(*compacting);
  compacting->prepare();
  const auto copies = files();
  for (const FoundEntry& one : found) {
    if (one.entry.sequence == 2) {
      compacting->release(one.entry);
    }
  }
  const auto releasedCopies = files();
  compacting.reset();
  std::mt19937 random(3);
  for (int round = 0; round < 50; ++round) {
    SCOPED_TRACE(round);
    const bool isSafe = round % 2 == 0;
    const bool isReleased = round % 4 == 0;
    auto expectedNow = sorted(expected());
    if (isReleased) {
      std::erase_if(expectedNow, [](const std::string& text) { return text.front() == '2'; });
    }
    std::filesystem::remove_all(path());
    std::filesystem::create_directory(path());
    for (const auto& [name, bytes] : originals) {
      if (!isSafe || random() % 2 == 0) {
        directory_.write("Outbox/" + name, bytes);
      }
    }
    for (auto [name, bytes] : isReleased ? releasedCopies : copies) {
      for (std::size_t page = 0; !isSafe && page < bytes.size() / 4096; ++page) {
        bytes.replace(page * 4096, 4096, random() % 2 == 0 ? bytes.substr(page * 4096, 4096) : std::string(4096, '\0'));
      }
      directory_.write("Outbox/" + name, bytes);
    }
    ASSERT_EQ(sorted(waiting(recoverAll(*open()))), expectedNow);
    auto log = open();
    ASSERT_EQ(sorted(waiting(recoverAll(*log))), expectedNow) << "copies were marked, the first ones were not";
    log.reset();
    log = open();
    log->recover(0, [&](const AppendLog::Found& one) { log->release(one.entry); });
    log = open();
    ASSERT_EQ(waiting(recoverAll(*log)).size(), 0U);
  }
}

}  // namespace
}  // namespace kesu
