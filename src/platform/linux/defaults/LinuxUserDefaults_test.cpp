#include "platform/linux/defaults/LinuxUserDefaults.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "platform/ServiceLog.h"
#include "testing/AppendText.h"
#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kCannotMount = 77;
const std::string kName = "kesu.defaults";

std::vector<std::string>& warnings() {
  static std::vector<std::string> lines;
  return lines;
}

bool exists(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0;
}

off_t sizeOf(const std::string& path) {
  struct stat info {};
  return ::lstat(path.c_str(), &info) == 0 ? info.st_size : -1;
}

/// A connection of another program to the same file.
class OtherProgram {
 public:
  explicit OtherProgram(const std::string& path) { sqlite3_open(path.c_str(), &database_); }
  ~OtherProgram() { sqlite3_close(database_); }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

  bool run(const char* sql) { return sqlite3_exec(database_, sql, nullptr, nullptr, nullptr) == SQLITE_OK; }

 private:
  sqlite3* database_ = nullptr;
};

class LinuxUserDefaultsTest : public ::testing::Test {
 protected:
  LinuxUserDefaultsTest() {
    warnings().clear();
    setServiceLogHandler([](int level, const std::string& text) {
      EXPECT_EQ(level, 2);
      warnings().push_back(text);
    });
  }
  ~LinuxUserDefaultsTest() override { setServiceLogHandler(nullptr); }

  std::unique_ptr<LinuxUserDefaults> open() { return std::make_unique<LinuxUserDefaults>(directory_.path()); }

  // Some 40 values of all sizes and a text of many pieces, in a file without a journal.
  std::string makeStore() {
    const auto defaults = open();
    for (int i = 0; i < 40; ++i) {
      defaults->set("key" + std::to_string(i), i % 2 == 0 ? Value(i) : Value(std::string(std::size_t(i) * 20, 'v')));
    }
    for (int i = 0; i < 200; ++i) {
      testing::appendText(*defaults, "flow", std::to_string(i) + ",");
      EXPECT_TRUE(defaults->synchronize());
    }
    defaults->checkpoint();
    return directory_.read(kName);
  }

  void removeAll() {
    for (const auto& entry : std::filesystem::directory_iterator(directory_.path())) {
      std::filesystem::remove_all(entry.path());
    }
  }

  // Opens whatever is there and expects it to work like a store that may have lost values. Damage that shows only at
  // the next start may cost what was written since, but never without a warning.
  void expectUsable() {
    {
      const auto defaults = open();
      for (const std::string& key : defaults->keys()) {
        EXPECT_TRUE(defaults->get(key).has_value());
      }
      defaults->set("new", 1);
      testing::appendText(*defaults, "flow", "end");
      EXPECT_TRUE(defaults->synchronize());
      defaults->checkpoint();
    }
    warnings().clear();
    const auto defaults = open();
    const std::int64_t number = defaults->integer("new");
    EXPECT_TRUE(number == 1 || !warnings().empty());
    EXPECT_TRUE(defaults->text("flow").ends_with("end") || !warnings().empty());
    EXPECT_TRUE(defaults->synchronize());
  }

  testing::TemporaryDirectory directory_;
};

TEST_F(LinuxUserDefaultsTest, NothingIsTouchedBeforeTheFirstUse) {
  LinuxUserDefaults defaults(directory_ / "a/b");
  EXPECT_FALSE(exists(directory_ / "a"));
  EXPECT_TRUE(defaults.synchronize());
  EXPECT_FALSE(exists(directory_ / "a"));
  EXPECT_EQ(defaults.get("key"), std::nullopt);
  EXPECT_TRUE(exists(directory_ / "a/b/kesu.defaults"));
}

TEST_F(LinuxUserDefaultsTest, FilesAreReadableByTheUserOnly) {
  LinuxUserDefaults defaults(directory_ / "a");
  defaults.set("key", 1);
  EXPECT_TRUE(defaults.synchronize());
  for (const char* companion : {"", "-wal", "-shm"}) {
    struct stat info {};
    ASSERT_EQ(::stat((directory_ / "a/kesu.defaults").append(companion).c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600U) << companion;
  }
}

TEST_F(LinuxUserDefaultsTest, WritesNothingForAValueThatIsThereAlready) {
  const auto defaults = open();
  const Value values[] = {1, "text", 0.5, Array{1, 2}};
  for (int round = 0; round < 2; ++round) {
    const off_t journal = sizeOf(directory_ / (kName + "-wal"));
    for (const Value& value : values) {
      defaults->set("key" + std::to_string(static_cast<int>(value.kind())), value);
    }
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(sizeOf(directory_ / (kName + "-wal")) == journal, round == 1);
  }
}

TEST_F(LinuxUserDefaultsTest, ALongArrayOfTwoProcessesIsNeverMixed) {
  open()->synchronize();
  const auto first = open();
  const auto second = open();
  Array ofFirst(200, "first");
  for (int i = 0; i < 5; ++i) {
    ofFirst[static_cast<std::size_t>(i) * 30] = i;
    first->set("list", ofFirst);
    EXPECT_TRUE(first->synchronize());
    EXPECT_EQ(open()->get("list"), Value(ofFirst));
    const Array ofSecond(100, i);
    second->set("list", ofSecond);
    EXPECT_TRUE(second->synchronize());
    EXPECT_EQ(open()->get("list"), Value(ofSecond));
  }
}

TEST_F(LinuxUserDefaultsTest, AsksForACheckpointWhenTheJournalGrowsAndEmptiesIt) {
  const auto defaults = open();
  int asked = 0;
  defaults->onCheckpointWanted([&] { ++asked; });
  defaults->set("key", 1);
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(asked, 1);
  std::string flow;
  for (int i = 0; i < 2000 && asked < 3; ++i) {
    testing::appendText(*defaults, "flow", "event,");
    flow += "event,";
    EXPECT_TRUE(defaults->synchronize());
  }
  EXPECT_EQ(asked, 3);
  EXPECT_GT(sizeOf(directory_ / (kName + "-wal")), DefaultsFile::kJournalLimitBytes);
  defaults->checkpoint();
  EXPECT_EQ(sizeOf(directory_ / (kName + "-wal")), 0);
  testing::appendText(*defaults, "flow", "end");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(open()->text("flow"), flow + "end");
}

TEST_F(LinuxUserDefaultsTest, ATruncatedFileIsReadOrSetAsideNeverMore) {
  const std::string whole = makeStore();
  int setAside = 0;
  for (std::size_t size = 0; size < whole.size(); size += 509) {
    SCOPED_TRACE(size);
    removeAll();
    directory_.write(kName, whole.substr(0, size));
    expectUsable();
    setAside += exists(directory_ / (kName + ".corrupt")) ? 1 : 0;
  }
  EXPECT_GT(setAside, 10);
}

TEST_F(LinuxUserDefaultsTest, FlippedBitsAreSurvived) {
  const std::string whole = makeStore();
  std::mt19937 random(20240611);
  int setAside = 0;
  for (int round = 0; round < 120; ++round) {
    SCOPED_TRACE(round);
    std::string damaged = whole;
    for (int flips = 1 << (round % 6); flips > 0; --flips) {
      char& byte = damaged[random() % damaged.size()];
      byte = static_cast<char>(byte ^ (1 << (random() % 8)));
    }
    removeAll();
    directory_.write(kName, damaged);
    expectUsable();
    setAside += exists(directory_ / (kName + ".corrupt")) ? 1 : 0;
  }
  EXPECT_GT(setAside, 5);
}

TEST_F(LinuxUserDefaultsTest, ADamagedFileIsSetAsideWithOneWarningAndStartsEmpty) {
  directory_.write(kName, std::string(5000, 'x'));
  const auto defaults = open();
  EXPECT_TRUE(defaults->keys().empty());
  EXPECT_EQ(warnings().size(), 1U);
  EXPECT_EQ(directory_.read(kName + ".corrupt"), std::string(5000, 'x'));
  defaults->set("key", 1);
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(open()->integer("key"), 1);
}

TEST_F(LinuxUserDefaultsTest, DamageFoundLaterLosesNothing) {
  makeStore();
  const auto defaults = open();
  defaults->set("before", "kept");
  EXPECT_TRUE(defaults->synchronize());
  defaults->checkpoint();
  directory_.write(kName, std::string(20'000, 'x'));
  defaults->set("after", "kept too");
  testing::appendText(*defaults, "flow", "end");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(warnings().size(), 1U);
  EXPECT_TRUE(exists(directory_ / (kName + ".corrupt")));
  defaults->checkpoint();

  const auto next = open();
  EXPECT_EQ(next->text("before"), "kept");
  EXPECT_EQ(next->text("after"), "kept too");
  EXPECT_EQ(next->text("key39"), std::string(39 * 20, 'v'));
  EXPECT_TRUE(next->text("flow").ends_with("198,199,end"));
}

TEST_F(LinuxUserDefaultsTest, WhatIsNoRegularFileIsRefusedAndNotTouched) {
  using Place = std::function<void(const std::string& path)>;
  const Place places[] = {
      [&](const std::string& path) {
        directory_.write("elsewhere", "not ours");
        EXPECT_EQ(::symlink((directory_ / "elsewhere").c_str(), path.c_str()), 0);
      },
      [](const std::string& path) { EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0); },
      [](const std::string& path) { EXPECT_EQ(::mkdir(path.c_str(), 0700), 0); },
      [](const std::string& path) { EXPECT_EQ(::mkfifo((path + "-wal").c_str(), 0600), 0); },
  };
  for (const Place& place : places) {
    removeAll();
    warnings().clear();
    place(directory_ / kName);
    const auto defaults = open();
    defaults->set("key", 1);
    EXPECT_FALSE(defaults->synchronize());
    defaults->checkpoint();
    EXPECT_EQ(defaults->integer("key"), 1);
    EXPECT_EQ(warnings().size(), 1U);
  }
  removeAll();
  places[0](directory_ / kName);
  open()->get("key");
  EXPECT_EQ(directory_.read("elsewhere"), "not ours");
}

TEST_F(LinuxUserDefaultsTest, WithoutAPlaceOnDiskTheValuesStayInMemory) {
  directory_.write("file", "");
  for (const std::string& place : {std::string(), directory_ / "file/below"}) {
    warnings().clear();
    LinuxUserDefaults defaults(place);
    defaults.set("key", 1);
    testing::appendText(defaults, "flow", "a");
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_FALSE(defaults.synchronize());
    defaults.checkpoint();
    EXPECT_EQ(defaults.integer("key"), 1);
    EXPECT_EQ(defaults.text("flow"), "a");
    EXPECT_EQ(warnings().size(), 1U);
  }
}

// The journal of a killed process included.
TEST_F(LinuxUserDefaultsTest, AReadOnlyStoreIsReadAndWarnedAboutOnce) {
  const auto defaults = open();
  defaults->set("key", "in the journal");
  defaults->set("list", Array(100, 1));
  EXPECT_TRUE(defaults->synchronize());
  testing::TemporaryDirectory copy;
  for (const char* companion : {"", "-wal", "-shm"}) {
    copy.write(kName + companion, directory_.read(kName + companion));
    ::chmod((copy / (kName + companion)).c_str(), 0444);
  }
  ASSERT_EQ(::chmod(copy.path().c_str(), 0555), 0);
  const auto verdict = testing::runUnprivileged([&] {
    LinuxUserDefaults readOnly(copy.path());
    const bool read = readOnly.text("key") == "in the journal" && readOnly.get("list") == Value(Array(100, 1));
    readOnly.set("key", 2);
    const bool written = readOnly.synchronize() || readOnly.synchronize();
    readOnly.checkpoint();
    return (read ? 0 : 1) + (written ? 2 : 0) + (readOnly.integer("key") == 2 ? 0 : 4) +
           (warnings().size() == 1 ? 0 : 8);
  });
  ::chmod(copy.path().c_str(), 0700);
  EXPECT_EQ(verdict, 0);
}

TEST_F(LinuxUserDefaultsTest, AFileThatMayNotBeOpenedIsLeftAlone) {
  const std::string whole = makeStore();
  ASSERT_EQ(::chmod((directory_ / kName).c_str(), 0), 0);
  ASSERT_EQ(::chmod(directory_.path().c_str(), 0777), 0);
  const auto verdict = testing::runUnprivileged([&] {
    LinuxUserDefaults defaults(directory_.path());
    const bool empty = defaults.keys().empty();
    defaults.set("key", 2);
    return (empty ? 0 : 1) + (defaults.synchronize() ? 2 : 0) + (defaults.integer("key") == 2 ? 0 : 4) +
           (warnings().size() == 1 ? 0 : 8);
  });
  EXPECT_EQ(verdict, 0);
  ::chmod((directory_ / kName).c_str(), 0600);
  EXPECT_EQ(directory_.read(kName), whole);
}

TEST_F(LinuxUserDefaultsTest, AFullDiskIsWaitedOut) {
  const auto verdict = testing::runInChild([&] {
    if (!testing::mountSmallDisk(directory_.path().c_str(), "256k")) {
      return kCannotMount;
    }
    bool failed = false;
    {
      const auto defaults = open();
      defaults->set("key", 1);
      failed = !defaults->synchronize();
      directory_.write("filler", std::string(1 << 20, 'f'));
      for (int i = 0; i < 300; ++i) {
        testing::appendText(*defaults, "flow", "event,");
        failed = !defaults->synchronize() || failed;
      }
      failed = !failed || warnings().size() != 1;
      std::filesystem::remove(directory_ / "filler");
      testing::appendText(*defaults, "flow", "end");
      failed = !defaults->synchronize() || failed;
    }
    const std::string flow = open()->text("flow");
    return (failed ? 1 : 0) + (flow.size() == 300 * 6 + 3 && flow.ends_with(",end") ? 0 : 2);
  });
  if (verdict == kCannotMount) {
    GTEST_SKIP() << "this process may not mount a file system";
  }
  EXPECT_EQ(verdict, 0);
}

TEST_F(LinuxUserDefaultsTest, ALockedFileIsWrittenOnceItIsFree) {
  const auto defaults = open();
  testing::appendText(*defaults, "flow", "a");
  Array list(200, "x");
  defaults->set("list", list);
  EXPECT_TRUE(defaults->synchronize());
  OtherProgram other(directory_ / kName);
  ASSERT_TRUE(other.run("BEGIN IMMEDIATE"));
  list[0] = 0;
  defaults->set("list", list);
  testing::appendText(*defaults, "flow", "b");
  defaults->set("key", 1);
  EXPECT_FALSE(defaults->synchronize());
  list[100] = 1;
  defaults->set("list", list);
  testing::appendText(*defaults, "flow", "c");
  defaults->remove("key");
  EXPECT_FALSE(defaults->synchronize());
  ASSERT_TRUE(other.run("ROLLBACK"));
  EXPECT_TRUE(defaults->synchronize());
  const auto next = open();
  EXPECT_EQ(next->text("flow"), "abc");
  EXPECT_EQ(next->get("key"), std::nullopt);
  EXPECT_EQ(next->get("list"), Value(list));
  EXPECT_TRUE(warnings().empty());
}

TEST_F(LinuxUserDefaultsTest, AFileThatIsLockedAtOpeningIsOpenedByACheckpoint) {
  makeStore();
  auto other = std::make_unique<OtherProgram>(directory_ / kName);
  ASSERT_TRUE(other->run("PRAGMA locking_mode=EXCLUSIVE; BEGIN IMMEDIATE; PRAGMA user_version=1"));
  const auto defaults = open();
  defaults->set("key0", "newer");
  EXPECT_FALSE(defaults->synchronize());
  other.reset();
  defaults->checkpoint();
  EXPECT_EQ(defaults->integer("key2"), 2);
  EXPECT_EQ(defaults->get("key0"), Value(0));
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(open()->get("key0"), Value(0));
}

TEST_F(LinuxUserDefaultsTest, TwoProcessesShareTheFile) {
  const auto first = open();
  const auto second = open();
  for (int i = 0; i < 20; ++i) {
    first->set("first", i);
    testing::appendText(*first, "firstFlow", "x");
    EXPECT_TRUE(first->synchronize());
    second->set("second", i);
    testing::appendText(*second, "secondFlow", "y");
    EXPECT_TRUE(second->synchronize());
    (i % 2 == 0 ? first : second)->checkpoint();
  }
  const auto third = open();
  EXPECT_EQ(third->integer("first") + third->integer("second"), 38);
  EXPECT_EQ(third->text("firstFlow") + third->text("secondFlow"), std::string(20, 'x') + std::string(20, 'y'));
}

TEST_F(LinuxUserDefaultsTest, AForkedChildWritesNothing) {
  auto defaults = open();
  defaults->set("key", "parent");
  EXPECT_TRUE(defaults->synchronize());
  const auto verdict = testing::runInChild([&] {
    const bool isSet = defaults->set("key", "child");
    const bool written = defaults->synchronize();
    defaults->checkpoint();
    const bool isRead = defaults->contains("key") || defaults->get("key");
    defaults.reset();
    return (written ? 1 : 0) + (isSet ? 2 : 0) + (isRead ? 4 : 0);
  });
  EXPECT_EQ(verdict, 0);
  testing::appendText(*defaults, "flow", "x");
  EXPECT_TRUE(defaults->synchronize());
  EXPECT_EQ(open()->text("key"), "parent");
  EXPECT_EQ(open()->text("flow"), "x");
}

constexpr std::size_t kNumbers = 100;

/// The last kNumbers numbers, each in its place.
Array lastNumbers(int number) {
  Array numbers(kNumbers, 0);
  for (int i = std::max(1, number - static_cast<int>(kNumbers) + 1); i <= number; ++i) {
    numbers[static_cast<std::size_t>(i) % kNumbers] = i;
  }
  return numbers;
}

/// What the child of the kill test does until it dies: one transaction after another, each told to `acknowledgements`.
int writeForEver(const std::string& directory, int acknowledgements) {
  LinuxUserDefaults defaults(directory);
  int number = static_cast<int>(defaults.integer("number"));
  defaults.remove("flow");
  defaults.set("first", number + 1);
  Array numbers = defaults.get("numbers").value_or(Array(kNumbers, 0)).array()[0];
  while (true) {
    ++number;
    defaults.set("number", number);
    numbers[static_cast<std::size_t>(number) % kNumbers] = number;
    defaults.set("numbers", numbers);
    defaults.set("list", Array{number, "text " + std::to_string(number)});
    testing::appendText(defaults, "flow", std::to_string(number) + ",");
    if (!defaults.synchronize() || ::write(acknowledgements, &number, sizeof(number)) != sizeof(number)) {
      return 1;
    }
    if (number % 50 == 0) {
      defaults.checkpoint();
    }
  }
}

/// Kills the child after `count` acknowledgements and returns the last number that it acknowledged.
int killAfter(const std::string& directory, unsigned count) {
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    ::_exit(writeForEver(directory, ends[1]));
  }
  ::close(ends[1]);
  int last = 0;
  for (unsigned i = 0; ::read(ends[0], &last, sizeof(last)) == sizeof(last); ++i) {
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

TEST_F(LinuxUserDefaultsTest, WhatWasAcknowledgedSurvivesEveryKill) {
  const bool isLong = std::getenv("KESU_LONG_TESTS") != nullptr;
  std::mt19937 random(7);
  for (int round = 0; round < (isLong ? 1000 : 25); ++round) {
    SCOPED_TRACE(round);
    const int acknowledged = killAfter(directory_.path(), static_cast<unsigned>(random() % 150));
    const auto defaults = open();
    const auto number = static_cast<int>(defaults->integer("number"));
    EXPECT_GE(number, acknowledged);
    EXPECT_LE(number, acknowledged + 1);
    EXPECT_EQ(defaults->get("list"), Value(Array{number, "text " + std::to_string(number)}));
    EXPECT_EQ(defaults->get("numbers"), Value(lastNumbers(number)));
    std::string flow;
    for (auto i = static_cast<int>(defaults->integer("first")); i <= number; ++i) {
      flow += std::to_string(i) + ",";
    }
    EXPECT_EQ(defaults->text("flow"), flow);
  }
  EXPECT_TRUE(warnings().empty());
}

TEST_F(LinuxUserDefaultsTest, ThreadsLoseNoneOfEachOthersChanges) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 300;
  auto defaults = open();
  std::atomic<int> writers{kThreads};
  const auto write = [&](int thread) {
    const std::string own = "own" + std::to_string(thread);
    for (int i = 0; i < kRounds; ++i) {
      defaults->set("number" + std::to_string(thread), i);
      testing::appendText(*defaults, own, std::to_string(i) + ",");
      testing::appendText(*defaults, "shared", "x");
      EXPECT_TRUE(defaults->synchronize());
      EXPECT_EQ(defaults->integer("number" + std::to_string(thread)), i);
      defaults->remove("taken");
      testing::appendText(*defaults, "taken", own);
    }
    --writers;
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back(write, thread);
  }
  while (writers > 0) {
    defaults->checkpoint();
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_TRUE(defaults->synchronize());
  defaults = open();
  std::string own;
  for (int i = 0; i < kRounds; ++i) {
    own += std::to_string(i) + ",";
  }
  for (int thread = 0; thread < kThreads; ++thread) {
    EXPECT_EQ(defaults->text("own" + std::to_string(thread)), own);
    EXPECT_EQ(defaults->integer("number" + std::to_string(thread)), kRounds - 1);
  }
  EXPECT_EQ(defaults->text("shared"), std::string(kThreads * kRounds, 'x'));
  EXPECT_EQ(defaults->text("taken").size(), 4U);
}

}  // namespace
}  // namespace kesu
