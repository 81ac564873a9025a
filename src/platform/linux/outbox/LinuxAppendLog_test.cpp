#include "platform/linux/outbox/LinuxAppendLog.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/ServiceLog.h"
#include "testing/ChildProcess.h"
#include "testing/FoundEntries.h"
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

using testing::FoundEntry;
using testing::joined;
using testing::namesIn;
using testing::numberedText;
using testing::recoverAll;

class LinuxAppendLogTest : public testing::OutboxDirectoryTest {
 protected:
  void SetUp() override { setServiceLogHandler(recordOutboxLine); }
  void TearDown() override {
    setServiceLogHandler(nullptr);
    EXPECT_EQ(takeOutboxLines(), std::vector<std::string>()) << "lines that the test did not expect";
  }
};

TEST_F(LinuxAppendLogTest, WritesAgainWhatWaitsWhereItsFilesAreRemovedOrHidden) {
  namespace fs = std::filesystem;
  const auto removeFiles = [this](const std::string& suffix) {
    for (const std::string& name : namesIn(path(), suffix)) {
      fs::remove(path() + "/" + name);
    }
  };
  const std::string hidden = path() + " below the mount";
  const std::function<void()> events[] = {[&] { fs::remove_all(path()); }, [&] { removeFiles(""); },
                                          [&] { removeFiles(".log"); }, [&] { removeFiles(".lock"); },
                                          [&] {
                                            fs::rename(path(), hidden);
                                            fs::create_directory(path());
                                          }};
  for (std::size_t row = 0; row < 2 * std::size(events); ++row) {
    SCOPED_TRACE(row);
    fs::remove_all(path());
    auto log = open();
    recoverAll(*log);
    log->setPreamble("older");
    log->append("old");
    log = open(row % 2 == 0 ? SegmentAccess::Mapped : SegmentAccess::SystemCalls);
    const auto found = recoverAll(*log);
    log->setPreamble("context");
    const auto before = log->append("before");
    log->release(*log->append("done"));
    log->append("waits");
    events[row / 2]();
    log->prepare();
    EXPECT_EQ(takeOutboxLines(),
              std::vector<std::string>{"0 Files of the outbox were removed or hidden. What waits is written again."});
    ASSERT_TRUE(log->append("behind"));
    std::string bytes;
    EXPECT_TRUE(log->read(found[0].entry, bytes) && bytes == "old");
    EXPECT_TRUE(log->read(*before, bytes) && bytes == "before") << "under the place that it had";
    log->release(*before);
    log->prepare();
    EXPECT_TRUE(recoverAll(*open()).empty()) << "a living process holds it";
    log = open();
    std::string waiting;
    for (const FoundEntry& one : recoverAll(*log)) {
      waiting += one.isReleased ? "" : one.bytes + "(" + one.preamble + ") ";
      log->release(one.entry);
    }
    EXPECT_EQ(waiting, "old(older) waits(context) behind(context) ");
    log->settle(10);
    log->prepare();
    EXPECT_EQ(namesIn(path()).size(), 2U) << "a lock and a segment";
    EXPECT_TRUE(!fs::exists(hidden) || namesIn(hidden).empty());
  }
}

TEST_F(LinuxAppendLogTest, TouchesNothingBeforeRecoveryAndThenOnlyForThisUser) {
  const auto log = open();
  log->prepare();
  EXPECT_FALSE(std::filesystem::exists(path()));
  recoverAll(*log);
  struct stat facts {};
  ASSERT_EQ(::stat(path().c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777U, 0700U);
  EXPECT_EQ(namesIn(path()).size(), 2U) << "a lock and a segment";
  for (const std::string& name : namesIn(path())) {
    ASSERT_EQ(::stat((path() + "/" + name).c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777U, 0600U) << name;
  }
}

TEST_F(LinuxAppendLogTest, KeepsFewSegmentsMappedHoweverMuchWaits) {
  const auto log = open(SegmentAccess::Mapped);
  recoverAll(*log);
  std::vector<AppendLog::Entry> entries;
  std::size_t appended = 0;
  std::size_t prepared = 0;
  for (unsigned i = 0; i < 5000; ++i) {
    entries.push_back(log->append(numberedText(i)).value());
    appended += numberedText(i).size();
    if (log->isRunningLow()) {
      log->prepare();
      ++prepared;
    }
  }
  EXPECT_GE(prepared, appended / (256 * 1024)) << "in each segment";
  log->prepare();
  std::ifstream maps("/proc/self/maps");
  int mapped = 0;
  for (std::string line; std::getline(maps, line);) {
    mapped += line.find(path()) != std::string::npos ? 1 : 0;
  }
  EXPECT_GE(mapped, 1);
  EXPECT_LE(mapped, 6) << "two to append to, four that are full";
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
  EXPECT_EQ(namesIn(path(), ".log").size(), 3U);
  for (unsigned i = 0; i < 999; ++i) {
    log->release(entries[i]);
  }
  log->settle(1000);
  log->prepare();
  EXPECT_LE(namesIn(path(), ".log").size(), 2U) << "the present one, perhaps the next";
  log = open();
  auto found = recoverAll(*log);
  ASSERT_FALSE(found.empty());
  EXPECT_FALSE(found.back().isReleased);
  EXPECT_EQ(found.back().preamble, "context") << "each segment begins with it";
  EXPECT_EQ(namesIn(path(), ".lock").size(), 2U);
  log->release(found.back().entry);
  log->settle(1000);
  log->prepare();
  EXPECT_EQ(namesIn(path(), ".lock").size(), 1U);
  EXPECT_EQ(namesIn(path(), ".log").size(), 1U);
  EXPECT_EQ(log->append("next")->sequence, 1001U);
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
    for (int round = 1; running > 0; ++round) {
      log->prepare();
      log->flush();
      if (round % 20 == 0) {
        std::filesystem::remove_all(path());
      }
    }
    log->prepare();
    takeOutboxLines();
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

/// Appends long entries, three to a segment, until nothing is taken any more; returns those that were.
std::vector<AppendLog::Entry> fillUp(LinuxAppendLog& log) {
  const std::string text(300'000, 'x');
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
  EXPECT_EQ(namesIn(path(), ".log").size(), LinuxAppendLog::kMostSegments);
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
  // Without a mapping nothing is allocated ahead: the second segment takes two more.
  const std::pair<SegmentAccess, std::size_t> table[] = {{SegmentAccess::Mapped, 3}, {SegmentAccess::SystemCalls, 5}};
  for (const auto& row : table) {
    const std::size_t fitting = row.second;
    const auto verdict = testing::runInChild([&, access = row.first] {
      if (!testing::mountSmallDisk(path().c_str(), "1500k")) {
        return kMountRefusedHere;
      }
      auto log = open(access);
      recoverAll(*log);
      auto entries = fillUp(*log);
      const bool isTold = fillUp(*log).empty() && takeOutboxLines().size() == 1;
      log->prepare();
      const bool isStillFull = entries.size() == fitting && fillUp(*log).empty();
      log->prepare();
      log->setPreamble("context");
      entries.push_back(log->append("short").value());
      for (const AppendLog::Entry& entry : entries) {
        log->release(entry);
      }
      log->settle(entries.back().sequence);
      log->prepare();
      const bool isUsable = fillUp(*log).size() == 3;
      log = open(access);
      const auto found = recoverAll(*log);
      const bool isWhole = found.size() >= 3 && found.back().bytes.size() == 300'000 &&
                           found.back().preamble == "context" && found.back().entry.sequence == fitting + 4;
      return (isTold ? 0 : 1) + (isStillFull ? 0 : 2) + (isUsable ? 0 : 4) + (isWhole ? 0 : 8);
    });
    if (verdict == kMountRefusedHere) {
      GTEST_SKIP() << "this process may not mount a file system";
    }
    EXPECT_EQ(verdict, 0) << fitting;
  }
}

TEST_F(LinuxAppendLogTest, LeavesToALaterStartWhatItMayNotOpen) {
  namespace fs = std::filesystem;
  auto log = open();
  recoverAll(*log);
  const std::string text(300'000, 'x');
  for (int i = 0; i < 4; ++i) {
    log->append(text);
  }
  log.reset();
  const std::string segment = path() + "/" + *namesIn(path(), ".log").begin();
  fs::permissions(directory_.path(), fs::perms::all);
  fs::permissions(path(), fs::perms::all);
  for (const auto& file : fs::directory_iterator(path())) {
    fs::permissions(file, file.path() == segment ? fs::perms::none : fs::perms::all);
  }
  const auto verdict = testing::runUnprivileged([&] {
    log = open();
    const bool isPart = recoverAll(*log).size() == 1;
    const bool isTold = takeOutboxLines() == std::vector<std::string>{
                                                 "0 Records of an earlier process cannot be "
                                                 "read: Permission denied"};
    const bool isAhead = log->append("a").value().sequence > 1'000'000;
    return (isPart ? 0 : 1) + (isTold ? 0 : 2) + (isAhead ? 0 : 4);
  });
  EXPECT_EQ(verdict, 0);
  fs::permissions(segment, fs::perms::owner_all);
  log = open();
  EXPECT_EQ(recoverAll(*log).size(), 5U);
}

TEST_F(LinuxAppendLogTest, ARemovedHomeIsNotMadeAgainByTheRunThatUsesIt) {
  const std::string home = directory_ / "home";
  auto log = std::make_unique<LinuxAppendLog>(home + "/Outbox");
  recoverAll(*log);
  log->append("before");
  std::filesystem::remove_all(home);
  log->prepare();
  EXPECT_FALSE(std::filesystem::exists(home));
  EXPECT_FALSE(log->append("a"));
  EXPECT_EQ(takeOutboxLines().size(), 1U) << "not kept";
  std::filesystem::create_directory(home);
  log->prepare();
  EXPECT_EQ(takeOutboxLines().size(), 1U) << "written again";
  EXPECT_TRUE(log->append("behind"));
  log = std::make_unique<LinuxAppendLog>(home + "/Outbox");
  EXPECT_EQ(joined(recoverAll(*log)), "before behind ");
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

}  // namespace
}  // namespace kesu
