#include "platform/linux/outbox/LinuxAppendLog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/ServiceLog.h"
#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kMountRefusedHere = 77;

Mutex linesMutex;
std::vector<std::string> outboxLines KESU_GUARDED_BY(linesMutex);

void recordOutboxLine(int level, const std::string& text) {
  const MutexLock lock(linesMutex);
  outboxLines.push_back(std::to_string(level) + " " + text);
}

std::vector<std::string> takeOutboxLines() {
  const MutexLock lock(linesMutex);
  return std::exchange(outboxLines, {});
}

/// One found entry, kept beyond the visit.
struct FoundEntry {
  AppendLog::Entry entry;
  bool isReleased = false;
  std::string preamble;
  std::string bytes;
};

std::vector<FoundEntry> recoverAll(AppendLog& log) {
  std::vector<FoundEntry> found;
  log.recover(0, [&](const AppendLog::Found& one) {
    found.push_back({one.entry, one.isReleased, std::string(one.preamble), std::string(one.bytes)});
  });
  return found;
}

std::string joined(const std::vector<FoundEntry>& found) {
  std::string text;
  for (const FoundEntry& one : found) {
    text += one.bytes + " ";
  }
  return text;
}

/// The names of a directory that end in `suffix`, sorted.
std::set<std::string> outboxNames(const std::string& directory, const std::string& suffix = {}) {
  std::set<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().string().ends_with(suffix)) {
      found.insert(entry.path().filename());
    }
  }
  return found;
}

/// A text that tells whether it is whole: of its own length for each number, 0 to 5,000 bytes.
std::string numberedText(unsigned number) {
  return std::to_string(number) + std::string(number * 37 % 5000, static_cast<char>('a' + number % 26));
}

class LinuxAppendLogTest : public ::testing::Test {
 protected:
  void SetUp() override { setServiceLogHandler(recordOutboxLine); }
  void TearDown() override {
    setServiceLogHandler(nullptr);
    EXPECT_EQ(takeOutboxLines(), std::vector<std::string>()) << "lines that the test did not expect";
  }

  std::string path() const { return directory_ / "Outbox"; }
  std::unique_ptr<LinuxAppendLog> open() const { return std::make_unique<LinuxAppendLog>(path()); }

  testing::TemporaryDirectory directory_;
};

TEST_F(LinuxAppendLogTest, TouchesNothingBeforeRecoveryAndThenOnlyForThisUser) {
  const auto log = open();
  log->prepare();
  EXPECT_FALSE(std::filesystem::exists(path()));
  recoverAll(*log);
  struct stat facts {};
  ASSERT_EQ(::stat(path().c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0700U);
  EXPECT_EQ(outboxNames(path()).size(), 2U) << "a lock and a segment";
  for (const std::string& name : outboxNames(path())) {
    ASSERT_EQ(::stat((path() + "/" + name).c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0600U) << name;
  }
}

TEST_F(LinuxAppendLogTest, KeepsTwoSegmentsMappedHoweverMuchWaits) {
  const auto log = open();
  recoverAll(*log);
  std::vector<AppendLog::Entry> entries;
  for (unsigned i = 0; i < 5000; ++i) {
    entries.push_back(log->append(numberedText(i)).value());
    if (i % 100 == 0) {
      log->prepare();
    }
  }
  log->prepare();
  std::ifstream maps("/proc/self/maps");
  int mapped = 0;
  for (std::string line; std::getline(maps, line);) {
    mapped += line.find(path()) != std::string::npos ? 1 : 0;
  }
  EXPECT_LE(mapped, 2);
  std::string bytes;
  for (unsigned i = 0; i < 5000; i += 7) {
    ASSERT_TRUE(log->read(entries[i], bytes)) << i;
    ASSERT_EQ(bytes, numberedText(i));
    log->release(entries[i]);
  }
  const auto found = recoverAll(*std::make_unique<LinuxAppendLog>(path()));
  EXPECT_TRUE(found.empty()) << "a living process holds it";
}

TEST_F(LinuxAppendLogTest, RemovesSegmentsWithoutWaitingEntriesAndAtLastTheLock) {
  auto log = open();
  recoverAll(*log);
  log->setPreamble("context");
  std::vector<AppendLog::Entry> entries;
  for (unsigned i = 0; i < 1000; ++i) {
    entries.push_back(log->append(numberedText(i)).value());
  }
  EXPECT_EQ(outboxNames(path(), ".log").size(), 3U);
  for (unsigned i = 0; i < 999; ++i) {
    log->release(entries[i]);
  }
  log->settle(1000);
  log->prepare();
  EXPECT_LE(outboxNames(path(), ".log").size(), 2U) << "the present one, perhaps the next";
  log = open();
  auto found = recoverAll(*log);
  ASSERT_FALSE(found.empty());
  EXPECT_FALSE(found.back().isReleased);
  EXPECT_EQ(found.back().preamble, "context") << "each segment begins with it";
  EXPECT_EQ(outboxNames(path(), ".lock").size(), 2U);
  log->release(found.back().entry);
  log->settle(1000);
  log->prepare();
  EXPECT_EQ(outboxNames(path(), ".lock").size(), 1U);
  EXPECT_EQ(outboxNames(path(), ".log").size(), 1U);
  EXPECT_EQ(log->append("next")->sequence, 1001U);
}

TEST_F(LinuxAppendLogTest, EachProcessHasALogOfItsOwnUntilItIsGone) {
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

TEST_F(LinuxAppendLogTest, LeavesAloneWhatIsNotItsOwn) {
  auto log = open();
  recoverAll(*log);
  log->append("a");
  log.reset();
  const std::string segment = *outboxNames(path(), ".log").begin();
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
  const std::set<std::string> before = outboxNames(path());
  directory_.write("Outbox/0000000000000007-00000001.log", "");  // Its owner died before it wrote the header.
  log = open();
  EXPECT_EQ(joined(recoverAll(*log)), "a ");
  log->settle(1);
  log->prepare();
  const std::set<std::string> after = outboxNames(path());
  EXPECT_TRUE(std::includes(after.begin(), after.end(), before.begin(), before.end()));
  EXPECT_FALSE(after.contains("0000000000000007-00000001.log"));
  EXPECT_EQ(directory_.read("Outbox/0000000000000003-00000001.log"), "of somebody else");
}

TEST_F(LinuxAppendLogTest, FindsWhatIsLeftOfATruncatedSegment) {
  auto log = open();
  recoverAll(*log);
  for (const char* text : {"a", "b", "c"}) {
    log->append(text);
  }
  log.reset();
  const std::string segment = path() + "/" + *outboxNames(path(), ".log").begin();
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

TEST_F(LinuxAppendLogTest, LossOfPowerLeavesWholeEntriesAndAllThatWasFlushed) {
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
  const std::string name = *outboxNames(path(), ".log").begin();
  const std::string flushed = directory_.read("Outbox/" + name);
  while (entries.size() < 200) {
    append();
  }
  const std::string latest = directory_.read("Outbox/" + name);
  ASSERT_EQ(outboxNames(path(), ".log").size(), 1U);
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

TEST_F(LinuxAppendLogTest, ThreadsAppendWhileOthersPrepareReadAndRelease) {
  constexpr unsigned kThreads = 8;
  constexpr unsigned kEach = 300;
  auto log = open();
  recoverAll(*log);
  log->setPreamble("context");
  std::atomic<unsigned> running{kThreads};
  Mutex mutex;
  std::vector<std::pair<AppendLog::Entry, unsigned>> appended;
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (unsigned i = 0; i < kEach; ++i) {
        const unsigned number = thread * kEach + i;
        const auto entry = log->append(numberedText(number));
        const MutexLock lock(mutex);
        appended.emplace_back(entry.value(), number);
      }
      --running;
    });
  }
  std::thread background([&] {
    while (running > 0) {
      log->prepare();
      log->flush();
    }
  });
  std::size_t next = 0;
  while (next < kThreads * kEach) {
    std::pair<AppendLog::Entry, unsigned> one;
    {
      const MutexLock lock(mutex);
      if (next == appended.size()) {
        continue;
      }
      one = appended[next++];
    }
    std::string bytes;
    ASSERT_TRUE(log->read(one.first, bytes));
    ASSERT_EQ(bytes, numberedText(one.second));
    if (one.second % 2 == 0) {
      log->release(one.first);
    }
  }
  background.join();
  for (std::thread& thread : threads) {
    thread.join();
  }
  std::map<AppendLog::Sequence, unsigned> numbers;
  for (const auto& [entry, number] : appended) {
    numbers[entry.sequence] = number;
  }
  log = open();
  AppendLog::Sequence sequence = 0;
  for (const FoundEntry& one : recoverAll(*log)) {
    ASSERT_EQ(one.entry.sequence, ++sequence);
    ASSERT_EQ(one.bytes, numberedText(numbers[sequence]));
    ASSERT_EQ(one.isReleased, numbers[sequence] % 2 == 0);
    ASSERT_EQ(one.preamble, "context");
  }
  EXPECT_EQ(sequence, kThreads * kEach);
}

/// Appends long entries until nothing is taken any more; returns those that were.
std::vector<AppendLog::Entry> fillUp(LinuxAppendLog& log) {
  const std::string text(AppendLog::kLongestEntry, 'x');
  std::vector<AppendLog::Entry> entries;
  while (const auto entry = log.append(text)) {
    entries.push_back(*entry);
  }
  return entries;
}

TEST_F(LinuxAppendLogTest, RefusesWhatIsBeyondTheLimitOfSegmentsAndSaysSoOnce) {
  const std::vector<std::string> line = {
      "0 Records are not kept on disk until they are delivered: too many are waiting."};
  const auto log = open();
  recoverAll(*log);
  const auto entries = fillUp(*log);
  EXPECT_EQ(outboxNames(path(), ".log").size(), LinuxAppendLog::kMostSegments);
  EXPECT_EQ(entries.size(), 3 * LinuxAppendLog::kMostSegments);
  EXPECT_TRUE(fillUp(*log).empty());
  EXPECT_EQ(takeOutboxLines(), line);
  log->release(entries[4]);
  log->release(entries[3]);
  log->release(entries[5]);
  log->settle(6);
  EXPECT_TRUE(fillUp(*log).empty()) << "only the background gives room back";
  log->prepare();
  EXPECT_EQ(fillUp(*log).size(), 3U);
  EXPECT_EQ(takeOutboxLines(), line) << "it had worked in between";
}

TEST_F(LinuxAppendLogTest, AFullDiskRefusesEntriesUntilThereIsRoom) {
  std::filesystem::create_directory(path());
  const auto verdict = testing::runInChild([&] {
    if (!testing::mountSmallDisk(path().c_str(), "1500k")) {
      return kMountRefusedHere;
    }
    const auto log = open();
    recoverAll(*log);
    const auto entries = fillUp(*log);
    const bool isTold = fillUp(*log).empty() && takeOutboxLines().size() == 1;
    log->prepare();
    const bool isStillFull = entries.size() == 3 && fillUp(*log).empty() && outboxNames(path()).size() == 2;
    for (const AppendLog::Entry& entry : entries) {
      log->release(entry);
    }
    log->settle(entries.back().sequence);
    log->prepare();
    const bool isUsable = fillUp(*log).size() == 3 && takeOutboxLines().size() == 1;
    return (isTold ? 0 : 1) + (isStillFull ? 0 : 2) + (isUsable ? 0 : 4);
  });
  if (verdict == kMountRefusedHere) {
    GTEST_SKIP() << "this process may not mount a file system";
  }
  EXPECT_EQ(verdict, 0);
}

TEST_F(LinuxAppendLogTest, WithoutADirectoryNothingIsKept) {
  directory_.write("Outbox", "a file in the way");
  for (const std::string& directory : {std::string(), path()}) {
    LinuxAppendLog log(directory);
    EXPECT_TRUE(recoverAll(log).empty());
    EXPECT_FALSE(log.append("a"));
    EXPECT_FALSE(log.append("a"));
    EXPECT_EQ(takeOutboxLines().size(), 1U) << directory;
    log.prepare();
    EXPECT_FALSE(log.append("a"));
  }
  LinuxAppendLog log(path());
  recoverAll(log);
  std::filesystem::remove(path());
  log.prepare();
  EXPECT_TRUE(log.append("a")) << "the disk is there now";
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

using LinuxAppendLogDeathTest = LinuxAppendLogTest;

TEST_F(LinuxAppendLogDeathTest, WhatWasAppendedAndReleasedSurvivesEveryKill) {
  std::mt19937 random(5);
  const int rounds = std::getenv("KESU_LONG_TESTS") != nullptr ? 500 : 30;
  for (int round = 0; round < rounds; ++round) {
    SCOPED_TRACE(round);
    const testing::TemporaryDirectory home;
    const auto [appended, released] = killAppending(home.path(), static_cast<unsigned>(random() % 2000));
    LinuxAppendLog log(home.path());
    const auto found = recoverAll(log);
    ASSERT_GE(found.size(), appended);
    ASSERT_LE(found.size(), appended + 1);
    for (unsigned i = 0; i < found.size(); ++i) {
      const unsigned number = i + 1;
      ASSERT_EQ(found[i].entry.sequence, number);
      ASSERT_EQ(found[i].bytes, numberedText(number));
      ASSERT_EQ(found[i].preamble, "context " + std::to_string(number / 10));
      ASSERT_TRUE(number == released + 1 || found[i].isReleased == (number <= released)) << number;
    }
  }
}

}  // namespace
}  // namespace kesu
