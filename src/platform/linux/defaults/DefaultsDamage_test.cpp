#include "platform/linux/defaults/DefaultsDamage.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <system_error>

#include "platform/ServiceLog.h"
#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "testing/AppendText.h"
#include "testing/ChildProcess.h"
#include "testing/FaultySqlite.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr const char* kStore = "kesu.defaults";
constexpr const char* kIdentity = "localKaid";

/// A store with an identity, part of it in the journal of a process that was killed, and starts that find it.
class DefaultsDamageTest : public ::testing::Test {
 protected:
  DefaultsDamageTest() {
    setServiceLogHandler([](int, const std::string&) {});
    LinuxUserDefaults defaults(seed_.path());
    defaults.set("list", Array(100, "in the file"));
    EXPECT_TRUE(defaults.synchronize());
    defaults.checkpoint();
    defaults.set(kIdentity, "first");
    testing::appendText(defaults, "flow", "old,");
    EXPECT_TRUE(defaults.synchronize());
    plant();
  }
  ~DefaultsDamageTest() override { setServiceLogHandler(nullptr); }

  void plant() {
    for (const auto& entry : std::filesystem::directory_iterator(home_.path())) {
      std::filesystem::remove_all(entry.path());
    }
    for (const char* companion : {"", "-wal"}) {
      home_.write(std::string(kStore) + companion, seed_.read(std::string(kStore) + companion));
    }
  }

  // What a run does with its identity: a new one only where there is proof that there is none.
  void start() {
    LinuxUserDefaults defaults(home_.path(), kStore, std::chrono::milliseconds(0));
    if (!defaults.isLoaded() || !defaults.contains(kIdentity)) {
      defaults.set(kIdentity, "second");
    }
    testing::appendText(defaults, "flow", "new,");
    defaults.get("list");
    defaults.synchronize();
    defaults.checkpoint();
    defaults.synchronize();
  }

  bool isSetAside() { return std::filesystem::exists(home_ / (std::string(kStore) + ".corrupt")); }

  void expectIdentity() {
    EXPECT_FALSE(isSetAside());
    LinuxUserDefaults defaults(home_.path());
    EXPECT_EQ(defaults.text(kIdentity), "first");
    EXPECT_TRUE(defaults.text("flow").starts_with("old,"));
    EXPECT_EQ(defaults.get("list"), Value(Array(100, "in the file")));
  }

  // As another program.
  static void run(const std::string& path, const char* sql) {
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    sqlite3_close(database);
  }

  testing::TemporaryDirectory seed_;
  testing::TemporaryDirectory home_;
};

TEST_F(DefaultsDamageTest, TheIdentitySurvivesEveryFailingCallOfAStart) {
  testing::FaultySqlite faults;
  for (const int code : {SQLITE_IOERR, SQLITE_CANTOPEN, SQLITE_FULL, SQLITE_IOERR_NOMEM}) {
    for (const bool forGood : {false, true}) {
      int reached = 0;
      for (int call = 1; call - 1 == reached && !HasFailure(); ++call) {
        SCOPED_TRACE(std::to_string(code) + (forGood ? " from call " : " at call ") + std::to_string(call));
        plant();
        faults.fail(call, code, forGood);
        start();
        reached = faults.calls() >= call ? call : reached;
        faults.fail(0, SQLITE_OK, false);
        expectIdentity();
      }
      EXPECT_GT(reached, 50);
    }
  }
}

TEST_F(DefaultsDamageTest, TheIdentitySurvivesAShortageOfDescriptors) {
  // UBSan looks at a class for the first time with descriptors of its own.
  ASSERT_FALSE(std::generic_category().message(EMFILE).empty());
  for (rlim_t limit = 3; limit < 40; ++limit) {
    SCOPED_TRACE(limit);
    plant();
    const auto ended = testing::runInChild([&] {
      const rlimit few{limit, limit};
      if (::setrlimit(RLIMIT_NOFILE, &few) != 0) {
        return 1;
      }
      start();
      return 0;
    });
    EXPECT_EQ(ended, 0);
    expectIdentity();
  }
}

TEST_F(DefaultsDamageTest, OnlyADamagedOrForeignFileIsSetAside) {
  struct Row {
    const char* name;
    std::function<void(const std::string& path)> change;
    bool isDamaged;
  };
  const auto overwrite = [this](std::size_t place, const std::string& bytes) {
    std::string file = home_.read(kStore);
    home_.write(kStore, file.replace(place, bytes.size(), bytes));
  };
  const auto remake = [](const char* sql) {
    return [sql](const std::string& path) {
      std::filesystem::remove(path);
      run(path, sql);
    };
  };
  const Row rows[] = {
      {"healthy", [](auto&) {}, false},
      {"empty", [this](auto&) { home_.write(kStore, ""); }, false},
      {"opened by a tool", [](auto& path) { run(path, "ANALYZE"); }, false},
      {"other first bytes", [&](auto&) { overwrite(0, "SQLite2"); }, true},
      {"needs a later version to write", [&](auto&) { overwrite(18, "\3"); }, true},
      {"needs a later version to read", [&](auto&) { overwrite(19, "\3"); }, true},
      {"cut within a page", [](auto& path) { std::filesystem::resize_file(path, 2500); }, true},
      {"a page of rubbish", [&](auto&) { overwrite(1024, std::string(1024, '\xff')); }, true},
      {"a text file", [this](auto&) { home_.write(kStore, std::string(2000, 't')); }, true},
      {"tables of others", remake("CREATE TABLE notes(text); INSERT INTO notes VALUES('mine')"), true},
      {"tables of others with a version", remake("CREATE TABLE notes(text); PRAGMA user_version=7"), true},
      {"other columns", remake("CREATE TABLE entry(a, b); CREATE TABLE suffix(a, b); PRAGMA user_version=1"), true},
      {"no table", remake("PRAGMA user_version=1"), true},
      {"a trigger in the way",
       [](auto& path) { run(path, "CREATE TRIGGER t BEFORE INSERT ON suffix BEGIN SELECT raise(ABORT, 'no'); END;"); },
       true},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    plant();
    { LinuxUserDefaults(home_.path()).checkpoint(); }  // Leaves no journal.
    row.change(home_ / kStore);
    const std::string before = home_.read(kStore);
    EXPECT_EQ(isProvenDamaged(home_ / kStore), row.isDamaged);
    start();
    EXPECT_EQ(isSetAside(), row.isDamaged);
    start();
    LinuxUserDefaults next(home_.path());
    EXPECT_TRUE(next.text("flow").ends_with("new,new,"));
    EXPECT_TRUE(next.isLoaded());
  }
}

}  // namespace
}  // namespace kesu
