#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/outbox/LinuxAppendLog.h"
#include "testing/FakeAppendLog.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

class AppendLogContract : public ::testing::TestWithParam<std::string> {
 protected:
  using Texts = std::vector<std::string>;

  AppendLogContract() { restart(); }

  AppendLog& log() { return isFake() ? static_cast<AppendLog&>(fake_) : *linux_; }

  /// Has the process die and another one start.
  void restart() {
    fake_.restart();
    linux_ = nullptr;
    linux_ = std::make_unique<LinuxAppendLog>(
        directory_ / "Library/Outbox", GetParam() == "Mapped" ? SegmentAccess::Mapped : SegmentAccess::SystemCalls);
  }

  /// Recovers and describes what is found: "number bytes", "(preamble)", "released".
  Texts recover(std::optional<AppendLog::Sequence> last = 0, const std::string& releasing = "none") {
    Texts found;
    log().recover(last, [&](const AppendLog::Found& one) {
      found.push_back(std::to_string(one.entry.sequence) + " " + std::string(one.bytes) +
                      (one.preamble.empty() ? "" : " (" + std::string(one.preamble) + ")") +
                      (one.isReleased ? " released" : ""));
      if (one.bytes == releasing) {
        log().release(one.entry);
      }
    });
    return found;
  }

  std::string readBack(const AppendLog::Entry& entry) {
    std::string bytes = "old";
    return log().read(entry, bytes) ? bytes : "unreadable";
  }

 private:
  static bool isFake() { return GetParam() == "Fake"; }

  testing::FakeAppendLog fake_;
  testing::TemporaryDirectory directory_;
  std::unique_ptr<LinuxAppendLog> linux_;
};

TEST_P(AppendLogContract, FindsEntriesOfAllEarlierProcessesInOrder) {
  EXPECT_EQ(recover(), Texts());
  EXPECT_EQ(log().append("a")->sequence, 1U);
  EXPECT_EQ(log().append("")->sequence, 2U);
  restart();
  EXPECT_EQ(recover(), (Texts{"1 a", "2 "}));
  EXPECT_EQ(log().append("b")->sequence, 3U);
  restart();
  EXPECT_EQ(recover(0), (Texts{"1 a", "2 ", "3 b"}));
  log().continueBehind(10);
  EXPECT_EQ(log().append("c")->sequence, 11U);
  restart();
  EXPECT_EQ(recover(5), (Texts{"1 a", "2 ", "3 b", "11 c"}));
  log().continueBehind(7);
  EXPECT_EQ(log().append("d")->sequence, 12U);
  restart();
  EXPECT_EQ(recover(std::nullopt).size(), 5U);
  EXPECT_GT(log().append("e")->sequence, 1'000'000U) << "ahead of what is not known";
}

TEST_P(AppendLogContract, NotesReleasesFromTheVisitLaterAndFromTheBeginning) {
  recover();
  const auto a = log().append("a");
  log().append("b");
  log().append("c", true);
  log().append("d");
  log().release(*a);
  log().release(*a);
  log().release({});
  restart();
  EXPECT_EQ(recover(0, "b"), (Texts{"1 a released", "2 b", "3 c released", "4 d"}));
  restart();
  EXPECT_EQ(recover(), (Texts{"1 a released", "2 b released", "3 c released", "4 d"}));
}

TEST_P(AppendLogContract, GivesEachEntryThePreambleInForce) {
  log().setPreamble("first");
  recover();
  log().append("a");
  log().setPreamble("second");
  log().setPreamble("second");
  log().append("b");
  log().setPreamble("");
  log().append("c");
  log().setPreamble("of no entry");
  restart();
  EXPECT_EQ(recover(), (Texts{"1 a (first)", "2 b (second)", "3 c"}));
  log().append("d");
  log().setPreamble(std::string(AppendLog::kLongestPreamble, 'p'));
  log().append(std::string(AppendLog::kLongestEntry, 'e'));
  log().setPreamble(std::string(AppendLog::kLongestPreamble + 1, 'p'));
  log().append("f");
  restart();
  EXPECT_EQ(recover(), (Texts{"1 a (first)", "2 b (second)", "3 c", "4 d",
                              "5 " + std::string(AppendLog::kLongestEntry, 'e') + " (" +
                                  std::string(AppendLog::kLongestPreamble, 'p') + ")",
                              "6 f"}));
}

TEST_P(AppendLogContract, ReadsEntriesThatWaitAlsoThoseOfEarlierProcesses) {
  recover();
  const std::string longest(AppendLog::kLongestEntry, 'x');
  const auto own = log().append(longest);
  EXPECT_EQ(readBack(*own), longest);
  EXPECT_EQ(readBack(*log().append("")), "");
  EXPECT_EQ(log().append(longest + "x"), std::nullopt);
  EXPECT_EQ(readBack({}), "unreadable");
  restart();
  AppendLog::Entry entry;
  log().recover(0, [&](const AppendLog::Found& found) { entry = found.entry.sequence == 1 ? found.entry : entry; });
  EXPECT_EQ(readBack(entry), longest);
}

TEST_P(AppendLogContract, UsesRoomOfReleasedEntriesAgainOnlyOnceTheyAreSettled) {
  recover();
  log().append("a");
  log().append("b");
  restart();
  recover(0, "a");
  log().prepare();
  restart();
  EXPECT_EQ(recover(0, "b"), (Texts{"1 a released", "2 b"}));
  log().settle(1);
  log().prepare();
  restart();
  EXPECT_EQ(recover().back(), "2 b released") << "not settled";
  log().settle(2);
  log().prepare();
  log().flush();
  restart();
  EXPECT_EQ(recover(), Texts());
  EXPECT_EQ(log().append("c")->sequence, 3U);
}

TEST_P(AppendLogContract, KeepsNothingBeforeRecovery) {
  EXPECT_EQ(log().append("a"), std::nullopt);
  log().prepare();
  log().flush();
  log().startFlush();
  EXPECT_EQ(recover(), Texts());
}

INSTANTIATE_TEST_SUITE_P(Logs, AppendLogContract, ::testing::Values("Mapped", "SystemCalls", "Fake"),
                         [](const auto& instance) { return instance.param; });

}  // namespace
}  // namespace kesu
