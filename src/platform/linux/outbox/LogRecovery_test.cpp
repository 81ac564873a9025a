#include "platform/linux/outbox/LogRecovery.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/linux/outbox/LinuxAppendLog.h"
#include "testing/ChildProcess.h"
#include "testing/FoundEntries.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

using testing::FoundEntry;
using testing::joined;
using testing::namesIn;
using testing::numberedText;
using testing::recoverAll;

using LogRecoveryTest = testing::OutboxDirectoryTest;

TEST_F(LogRecoveryTest, EachProcessHasALogOfItsOwnUntilItIsGone) {
  auto first = open();
  recoverAll(*first);
  first->append("a");
  first->append("b");
  const auto child = testing::runInChild([&] {
    const bool isSilent = !first->append("x") && first->isInForkedChild();
    first->setPreamble("x");
    first->flush();
    const auto own = open();
    const bool isAlone = recoverAll(*own).empty();
    const bool isKept = own->append("c") && own->append("d") && own->append("e");
    return (isSilent ? 0 : 1) + (isAlone ? 0 : 2) + (isKept ? 0 : 4);
  });
  EXPECT_EQ(child, 0);
  auto second = open();
  EXPECT_EQ(joined(recoverAll(*second)), "c d e ");
  EXPECT_EQ(second->append("f")->sequence, 4U);
  first.reset();
  EXPECT_EQ(joined(recoverAll(*open())), "a b ");
  second.reset();
  EXPECT_EQ(joined(recoverAll(*open())), "a c b d e f ") << "by number, the older log first";
}

/// Recovers, tells the first letter of each entry and that it has finished, removes the logs, and lives until `until`
/// is closed.
int takeOverAndTell(const std::string& directory, int tell, int until) {
  LinuxAppendLog log(directory);
  std::string letters;
  log.recover(0, [&](const AppendLog::Found& found) {
    letters += found.bytes.front();
    log.release(found.entry);
  });
  log.settle(1);
  log.prepare();
  letters += '!';
  const bool isTold = ::write(tell, letters.data(), letters.size()) == static_cast<ssize_t>(letters.size());
  char end = 0;
  return isTold && ::read(until, &end, 1) == 0 ? 0 : 1;
}

TEST_F(LogRecoveryTest, OfProcessesThatStartTogetherOneTakesEachLogOver) {
  constexpr int kStarts = 4;
  const std::string letters = "abcdefghijklmnopqrst";
  std::vector<std::unique_ptr<LinuxAppendLog>> logs;
  for (const char letter : letters) {
    logs.push_back(open());
    recoverAll(*logs.back());
    logs.back()->append({&letter, 1});
  }
  logs.clear();
  int told[2];
  int until[2];
  ASSERT_EQ(::pipe(told) + ::pipe(until), 0);
  std::vector<pid_t> children;
  for (int start = 0; start < kStarts; ++start) {
    children.push_back(::fork());
    if (children.back() == 0) {
      ::close(until[1]);
      ::_exit(takeOverAndTell(path(), told[1], until[0]));
    }
  }
  std::string found;
  for (char letter = 0; std::count(found.begin(), found.end(), '!') < kStarts && ::read(told[0], &letter, 1) == 1;) {
    found += letter;
  }
  for (const int end : {told[0], told[1], until[0], until[1]}) {
    ::close(end);
  }
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, std::string(kStarts, '!') + letters);
  EXPECT_EQ(namesIn(path()).size(), 2 * kStarts) << "a lock and a segment of each, nothing of the others";
}

TEST_F(LogRecoveryTest, LeavesAloneWhatIsNotItsOwn) {
  auto log = open();
  recoverAll(*log);
  log->append("a");
  log.reset();
  const std::string segment = *namesIn(path(), ".log").begin();
  const std::string lockOf = segment.substr(0, 16) + ".lock";
  std::filesystem::remove(path() + "/" + lockOf);
  std::string bytes = directory_.read("Outbox/" + segment);
  const std::string names[] = {"notes.txt", "0000000000000001-00000001.log", "0000000000000002-00000001.log.old",
                               "000000000000000A-00000001.log", segment.substr(0, 17) + "00000000.log"};
  for (const std::string& name : names) {
    directory_.write("Outbox/" + name, name == "notes.txt" ? "x" : bytes);
  }
  directory_.write("Outbox/0000000000000003-00000001.log", "of somebody else");
  ASSERT_EQ(::symlink((path() + "/" + segment).c_str(), (path() + "/0000000000000004-00000001.log").c_str()), 0);
  ASSERT_EQ(::mkfifo((path() + "/0000000000000005-00000001.log").c_str(), 0600), 0);
  std::filesystem::create_directory(path() + "/0000000000000006.lock");
  const std::set<std::string> before = namesIn(path());
  directory_.write("Outbox/0000000000000007-00000001.log", "");  // Its owner died before it wrote the header.
  log = open();
  EXPECT_EQ(joined(recoverAll(*log)), "a ");
  log->settle(1);
  log->prepare();
  const std::set<std::string> after = namesIn(path());
  EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
  EXPECT_FALSE(after.contains("0000000000000007-00000001.log"));
  EXPECT_EQ(directory_.read("Outbox/0000000000000003-00000001.log"), "of somebody else");
}

TEST_F(LogRecoveryTest, FindsWhatIsLeftOfATruncatedSegment) {
  auto log = open();
  recoverAll(*log);
  for (const char* text : {"a", "b", "c"}) {
    log->append(text);
  }
  log.reset();
  const std::string segment = path() + "/" + *namesIn(path(), ".log").begin();
  const std::pair<std::uintmax_t, std::string> table[] = {{100'000, "a b c "},
                                                          {40 + 3 * 32, "a b c "},
                                                          {40 + 2 * 32 + 24, "a b "},
                                                          {40 + 50, "a "},
                                                          {40, ""},
                                                          {39, ""},
                                                          {0, ""}};
  for (const auto& [size, expected] : table) {
    std::filesystem::resize_file(segment, size);
    log = open();
    const auto found = recoverAll(*log);
    EXPECT_EQ(joined(found), expected) << size;
    for (const FoundEntry& one : found) {
      std::string bytes;
      EXPECT_TRUE(log->read(one.entry, bytes));
      EXPECT_EQ(bytes, one.bytes);
    }
  }
}

TEST_F(LogRecoveryTest, LossOfPowerLeavesWholeEntriesAndAllThatWasFlushed) {
  constexpr std::size_t kPage = 4096;
  std::mt19937 random(11);
  auto log = open();
  recoverAll(*log);
  std::vector<AppendLog::Entry> entries;
  const auto append = [&] {
    const auto number = static_cast<unsigned>(entries.size() + 1);
    log->setPreamble("context " + std::to_string(number / 5));
    entries.push_back(log->append(numberedText(number)).value());
    if (number % 2 == 0) {
      log->release(entries[number / 2]);
    }
  };
  while (entries.size() < 100) {
    append();
  }
  log->flush();
  const std::string name = *namesIn(path(), ".log").begin();
  const std::string flushed = directory_.read("Outbox/" + name);
  while (entries.size() < 200) {
    append();
  }
  const std::string latest = directory_.read("Outbox/" + name);
  ASSERT_EQ(namesIn(path(), ".log").size(), 1U);
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    const testing::TemporaryDirectory disk;
    std::string bytes = flushed;
    for (std::size_t page = 0; page < bytes.size() / kPage; ++page) {
      if (random() % 4 != 0) {
        bytes.replace(page * kPage, kPage, latest, page * kPage, kPage);
      }
    }
    disk.write(name, bytes);
    LinuxAppendLog after(disk.path());
    const auto found = recoverAll(after);
    ASSERT_GE(found.size(), 100U);
    for (std::size_t i = 0; i < found.size(); ++i) {
      const auto number = static_cast<unsigned>(found[i].entry.sequence);
      ASSERT_TRUE(i < 100 ? number == i + 1 : number > found[i - 1].entry.sequence);
      ASSERT_EQ(found[i].bytes, numberedText(number));
      ASSERT_EQ(found[i].preamble, "context " + std::to_string(number / 5));
      ASSERT_TRUE(found[i].isReleased || number < 2 || number > 51) << number << " was released before the flush";
    }
  }
}

/// What a child has done, as it says through its pipe.
struct Done {
  bool isRelease = false;
  unsigned number = 0;
};

int appendForEver(const std::string& directory, int pipe) {
  LinuxAppendLog log(directory);
  log.recover(0, [](const AppendLog::Found&) {});
  std::vector<AppendLog::Entry> entries;
  for (unsigned number = 1;; ++number) {
    log.setPreamble("context " + std::to_string(number / 10));
    entries.push_back(log.append(numberedText(number)).value_or(AppendLog::Entry{}));
    Done done{false, number};
    bool isHeard = ::write(pipe, &done, sizeof(done)) == sizeof(done);
    if (number % 3 == 0) {
      done = {true, number / 3};
      log.release(entries[number / 3 - 1]);
      isHeard = isHeard && ::write(pipe, &done, sizeof(done)) == sizeof(done);
    }
    if (!isHeard) {
      return 1;
    }
    if (number % 50 == 0) {
      log.settle(number / 3);
      log.prepare();
    }
  }
}

/// Kills such a child after so many words of it; returns the numbers of its last append and release.
std::pair<unsigned, unsigned> killAppending(const std::string& directory, unsigned count) {
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::close(ends[0]);
    ::_exit(appendForEver(directory, ends[1]));
  }
  ::close(ends[1]);
  std::pair<unsigned, unsigned> last{0, 0};
  Done done;
  for (unsigned i = 0; ::read(ends[0], &done, sizeof(done)) == sizeof(done); ++i) {
    (done.isRelease ? last.second : last.first) = done.number;
    if (i == count) {
      ::kill(child, SIGKILL);
    }
  }
  ::close(ends[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status));
  return last;
}

using LogRecoveryDeathTest = LogRecoveryTest;

TEST_F(LogRecoveryDeathTest, WhatWasAppendedAndReleasedSurvivesEveryKill) {
  std::mt19937 random(5);
  const int rounds = std::getenv("KESU_LONG_TESTS") != nullptr ? 500 : 30;
  for (int round = 0; round < rounds; ++round) {
    SCOPED_TRACE(round);
    const testing::TemporaryDirectory home;
    const auto [appended, released] = killAppending(home.path(), static_cast<unsigned>(random() % 4000));
    LinuxAppendLog log(home.path());
    const auto found = recoverAll(log);
    const unsigned first = found.empty() ? 1 : static_cast<unsigned>(found[0].entry.sequence);
    ASSERT_LE(first, released + 1) << "only what was released may be gone";
    ASSERT_GE(first + found.size(), appended + 1);
    ASSERT_LE(first + found.size(), appended + 2);
    for (unsigned i = 0; i < found.size(); ++i) {
      const unsigned number = first + i;
      ASSERT_EQ(found[i].entry.sequence, number);
      ASSERT_EQ(found[i].bytes, numberedText(number));
      ASSERT_EQ(found[i].preamble, "context " + std::to_string(number / 10));
      ASSERT_TRUE(number == released + 1 || found[i].isReleased == (number <= released)) << number;
    }
  }
}

}  // namespace
}  // namespace kesu
