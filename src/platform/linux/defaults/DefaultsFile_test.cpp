#include "platform/linux/defaults/DefaultsFile.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "platform/ServiceLog.h"
#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "testing/AppendText.h"
#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kMayNotMount = 77;

/// A home with the store of an earlier run, which a new run cannot read at first.
class LateHomeTest : public ::testing::Test {
 protected:
  LateHomeTest() {
    setServiceLogHandler([](int, const std::string&) {});
    makeStore(home_);
  }
  ~LateHomeTest() override { setServiceLogHandler(nullptr); }

  static std::unique_ptr<LinuxUserDefaults> open(const std::string& home) {
    return std::make_unique<LinuxUserDefaults>(home, "kesu.defaults", std::chrono::milliseconds(0));
  }

  static void makeStore(const std::string& home) {
    const auto defaults = open(home);
    defaults->set("id", "first");
    testing::appendText(*defaults, "flow", "a");
    defaults->set("list", Array(100, "first"));
    EXPECT_TRUE(defaults->synchronize());
  }

  // What a run writes that does not know the file.
  static void writeUnknowing(UserDefaults& defaults) {
    defaults.set("id", "second");
    defaults.set("list", Array(100, "second"));
    testing::appendText(defaults, "flow", "b");
    defaults.set("new", 1);
  }

  // The number of the first value that is not as joining ends.
  static int findWrong(UserDefaults& defaults) {
    const bool isRight[] = {defaults.text("id") == "first", defaults.text("flow") == "ab",
                            defaults.get("list") == Value(Array(100, "first")), defaults.integer("new") == 1};
    const auto* const wrong = std::find(std::begin(isRight), std::end(isRight), false);
    return wrong == std::end(isRight) ? 0 : static_cast<int>(wrong - std::begin(isRight)) + 1;
  }

  testing::TemporaryDirectory directory_;
  const std::string home_ = directory_ / "home";
};

TEST_F(LateHomeTest, AHomeThatMayNotBeEnteredAtFirstIsJoinedBySynchronize) {
  constexpr uid_t kNobody = 65534;
  ASSERT_EQ(::chmod(directory_.path().c_str(), 0755), 0);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory_.path())) {
    ASSERT_TRUE(::geteuid() != 0 || ::chown(entry.path().c_str(), kNobody, kNobody) == 0);
  }
  const auto verdict = testing::runUnprivileged([&] {
    ::chmod(home_.c_str(), 0);
    const auto defaults = open(home_);
    int told = 0;
    bool isEarly = false;
    defaults->whenLoaded([&] {
      ++told;
      isEarly = !defaults->synchronize() && !open(home_)->contains("new");
    });
    writeUnknowing(*defaults);
    if (defaults->isLoaded() || defaults->synchronize() || told != 0) {
      return 10;
    }
    ::chmod(home_.c_str(), 0700);
    const bool isWritten = defaults->synchronize() && isEarly;
    return !isWritten || !defaults->isLoaded() || told != 1 ? 11 : findWrong(*defaults) + findWrong(*open(home_));
  });
  EXPECT_EQ(verdict, 0);
}

TEST_F(LateHomeTest, AHomeThatIsMountedLateKeepsItsValues) {
  const auto verdict = testing::runInChild([&] {
    const std::string place = directory_ / "place";
    std::filesystem::create_directory(place);
    if (!testing::mountSmallDisk(home_.c_str(), "1m")) {
      return kMayNotMount;
    }
    makeStore(home_);
    const auto defaults = open(place);
    writeUnknowing(*defaults);
    if (!defaults->synchronize() || ::mount(home_.c_str(), place.c_str(), nullptr, MS_BIND, nullptr) != 0) {
      return 10;
    }
    defaults->set("later", Array(100, "later"));
    const bool isWritten = defaults->synchronize();
    defaults->checkpoint();
    const auto next = open(place);
    return isWritten && next->contains("later") ? findWrong(*defaults) + findWrong(*next) : 11;
  });
  if (verdict == kMayNotMount) {
    GTEST_SKIP() << "this process may not mount a file system";
  }
  EXPECT_EQ(verdict, 0);
}

TEST_F(LateHomeTest, ARemovedHomeIsNotMadeAgainByTheRunThatUsesIt) {
  const auto defaults = open(home_);
  defaults->set("id", "second");
  EXPECT_TRUE(defaults->synchronize());
  std::filesystem::remove_all(home_);
  defaults->set("id", "third");
  defaults->synchronize();
  defaults->checkpoint();
  EXPECT_FALSE(std::filesystem::exists(home_));
}

TEST_F(LateHomeTest, AForkedChildWaitsForNoThreadOfItsParent) {
  const auto defaults = open(home_);
  for (int i = 0; i < 3000; ++i) {
    defaults->set("key" + std::to_string(i), i);
  }
  std::atomic<bool> ends{false};
  std::thread holder([&] {
    while (!ends) {
      defaults->keys();  // Locks the cache most of the time.
    }
  });
  for (int round = 0; round < 20; ++round) {
    const auto verdict = testing::runInChild([&] {
      ::alarm(10);
      const DefaultsChange change = DefaultsChange::set("key1", 0);
      defaults->set("key1", 0);
      testing::appendText(*defaults, "flow", "x");
      defaults->apply({&change, 1});
      defaults->remove("key2");
      defaults->whenLoaded([] {});
      defaults->checkpoint();
      const bool isAnswered = defaults->synchronize() || defaults->isLoaded() || defaults->contains("key1") ||
                              defaults->get("key1") || defaults->get("flow") || !defaults->keys().empty();
      return isAnswered ? 1 : 0;
    });
    EXPECT_EQ(verdict, 0);
  }
  ends = true;
  holder.join();
  EXPECT_EQ(defaults->integer("key1"), 1);
}

}  // namespace
}  // namespace kesu
