#include "outbox/Outbox.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class OutboxTest : public ::testing::Test {
 protected:
  OutboxTest() { begin(); }

  /// Starts a process on what the last one left.
  void begin() {
    outbox = std::make_unique<Outbox>(platform.outbox, platform.defaults, platform.background, platform.clock,
                                      platform.random);
    deliveries.clear();
    outbox->startDelivery([this](Outbox::Delivery delivery) { deliveries.push_back(std::move(delivery)); });
  }

  /// Kills the process: what is queued, on its way or in memory only is gone.
  void die() {
    outbox.reset();
    platform.background.discardAll();
    platform.defaults.loseUnsynchronized();
    platform.outbox.restart();
  }

  void dieAndBegin() {
    die();
    begin();
    outbox->open();
    platform.settle();
  }

  void add(int number, const DefaultsChanges& changes = {}) { outbox->add({}, {{"n", number}}, std::nullopt, changes); }
  void append(const std::string& text) { outbox->change(DefaultsChanges{DefaultsChange::append("~ef", text)}); }

  /// The numbers handed out since begin().
  std::string handedOut() {
    platform.settle();
    std::string numbers;
    for (const Outbox::Delivery& delivery : deliveries) {
      const Value* number = delivery.record.entries.find("n");
      numbers += number != nullptr ? std::to_string(number->integerValue()) : "?";
    }
    return numbers;
  }

  testing::ScopedPlatform platform;
  std::vector<Outbox::Delivery> deliveries;
  std::unique_ptr<Outbox> outbox;
};

TEST_F(OutboxTest, HandsOutAgainWhatWasNotDoneWith) {
  outbox->setContext({{"kak", "first"}});
  for (const int number : {1, 2, 3}) {
    platform.clock.advance(1.0);
    add(number);
  }
  EXPECT_EQ(handedOut(), "123");
  const double moment = deliveries[0].record.moment;
  const auto identifier = deliveries[0].record.identifier;
  outbox->finish(deliveries[1].ticket);
  dieAndBegin();
  outbox->setContext({{"kak", "second"}});
  add(4);
  EXPECT_EQ(handedOut(), "134") << "the older ones first";
  EXPECT_EQ(deliveries[0].record.moment, moment);
  EXPECT_EQ(deliveries[0].record.identifier, identifier);
  EXPECT_EQ(*deliveries[0].context, (Dictionary{{"kak", "first"}}));
  EXPECT_EQ(deliveries[2].context, nullptr);
  dieAndBegin();
  EXPECT_EQ(handedOut(), "134");
  EXPECT_EQ(*deliveries[1].context, (Dictionary{{"kak", "first"}}));
  EXPECT_EQ(*deliveries[2].context, (Dictionary{{"kak", "second"}}));
}

TEST_F(OutboxTest, MakesEachChangeOnceWhereverTheProcessDies) {
  // Whether what is new is written to the user defaults behind each of the changes.
  for (unsigned writes = 0; writes < 16; ++writes) {
    platform.defaults.set("~ef", "");
    platform.defaults.synchronize();
    for (unsigned step = 0; step < 4; ++step) {
      append(std::to_string(step));
      if ((writes & (1U << step)) != 0) {
        platform.background.runDelayed();
      }
      if (step == 1) {
        dieAndBegin();
      }
    }
    dieAndBegin();
    EXPECT_EQ(platform.defaults.text("~ef"), "0123") << writes;
  }
}

TEST_F(OutboxTest, FindsAgainWhatItLogsBehindADamagedNumber) {
  platform.defaults.set("~logged", std::numeric_limits<std::int64_t>::max());
  platform.defaults.synchronize();
  for (const char* text : {"a", "b"}) {
    append(text);
    dieAndBegin();
  }
  EXPECT_EQ(platform.defaults.text("~ef"), "ab");
}

TEST_F(OutboxTest, LeavesAloneWhatALaterVersionHasLogged) {
  add(1);
  platform.outbox.append("\x02 which this version cannot read");
  dieAndBegin();
  EXPECT_EQ(handedOut(), "1");
  EXPECT_EQ(platform.outbox.openCount(), 2U);
}

TEST_F(OutboxTest, TakesARecordAndItsChangesInOneStep) {
  append("flow");
  outbox->addBuilt({}, [this](Dictionary& entries, DefaultsChanges& changes) {
    entries.set("n", 7);
    entries.set("~ef", platform.defaults.text("~ef"));
    changes.push_back(DefaultsChange::remove("~ef"));
  });
  dieAndBegin();
  EXPECT_EQ(handedOut(), "7");
  EXPECT_EQ(*deliveries[0].record.entries.findText("~ef"), "flow");
  EXPECT_FALSE(platform.defaults.contains("~ef"));
}

TEST_F(OutboxTest, KeepsInMemoryWhatTheLogDoesNotTake) {
  platform.outbox.refuse(true);
  add(1, {DefaultsChange::append("~ef", "a")});
  EXPECT_EQ(*platform.defaults.keptOnDisk().findText("~ef"), "a") << "written at once";
  EXPECT_EQ(handedOut(), "1");
  EXPECT_FALSE(deliveries[0].ticket.isLogged);
  outbox->park(deliveries[0].ticket);
  outbox->retryParked();
  EXPECT_EQ(handedOut(), "1") << "nothing has it any more";
}

TEST_F(OutboxTest, HasAWindowOfRecordsUnderWay) {
  constexpr std::size_t kMost = OutboxQueue::kMostInFlight;
  constexpr std::size_t kDone = kMost - OutboxQueue::kFewInFlight;
  for (int number = 0; number < static_cast<int>(2 * kMost); ++number) {
    add(number);
  }
  platform.settle();
  ASSERT_EQ(deliveries.size(), kMost);
  for (std::size_t done = 0; done + 1 < kDone; ++done) {
    outbox->finish(deliveries[done].ticket);
  }
  platform.settle();
  EXPECT_EQ(deliveries.size(), kMost) << "no record for a single reply";
  outbox->park(deliveries[kDone - 1].ticket);
  add(-1);
  platform.settle();
  EXPECT_EQ(deliveries.size(), kMost + kDone) << "one for each that is done with or parked";
}

TEST_F(OutboxTest, OnlyLogsOnceTheEndHasBegun) {
  add(1);
  outbox->beginEnd();
  add(2);
  EXPECT_EQ(handedOut(), "1");
  outbox->leave();
  platform.outbox.refuse(true);
  add(3);
  EXPECT_EQ(handedOut(), "13") << "the log does not have this one";
  platform.outbox.refuse(false);
  dieAndBegin();
  EXPECT_EQ(handedOut(), "12");
}

TEST_F(OutboxTest, HandsOutOnThePostingThreadOnceTheWorkerIsGone) {
  platform.background.shutdown(0.0);
  add(1);
  EXPECT_EQ(handedOut(), "1");
  outbox->finish(deliveries[0].ticket);
  EXPECT_FALSE(outbox->retryParked());
}

TEST_F(OutboxTest, HandsOutAtTheEndWhatIsNotLoggedEvenBehindAFullWindow) {
  for (std::size_t number = 0; number <= OutboxQueue::kMostInFlight; ++number) {
    add(0);
  }
  platform.outbox.refuse(true);
  add(7);
  platform.settle();
  EXPECT_FALSE(outbox->beginEnd()) << "the end has to wait for it";
  ASSERT_EQ(deliveries.size(), OutboxQueue::kMostInFlight);
  outbox->leave();
  platform.settle();
  ASSERT_EQ(deliveries.size(), OutboxQueue::kMostInFlight + 1);
  EXPECT_EQ(*deliveries.back().record.entries.find("n"), Value(7));
  EXPECT_TRUE(outbox->beginEnd());
}

TEST_F(OutboxTest, AppliesOnceWhatWasLoggedWhenTheUserDefaultsAreReadLate) {
  append("a");
  platform.background.runDelayed();
  append("b");
  die();
  platform.defaults.hideDisk();
  begin();
  outbox->open();
  append("c");
  EXPECT_EQ(platform.defaults.text("~ef"), "c");
  platform.defaults.showDisk();
  platform.settle();
  EXPECT_EQ(platform.defaults.text("~ef"), "acb") << "all of it, each once";
  platform.background.runDelayed();
  append("d");
  dieAndBegin();
  EXPECT_EQ(platform.defaults.text("~ef"), "acbd");
}

TEST_F(OutboxTest, MakesEachChangeOnceBehindAHomeThatIsMountedLate) {
  for (const std::int64_t made : {1, 65}) {
    SCOPED_TRACE(made);
    dieAndBegin();
    platform.defaults.set("~ef", "");
    append("a");
    append("b");
    platform.background.runDelayed();
    platform.defaults.mount({{"~logged", made}, {"~ef", "x"}});
    append("c");  // Before anybody has noticed.
    platform.background.runDelayed();
    dieAndBegin();
    append("d");
    EXPECT_GT(platform.defaults.integer("~logged"), made);
    dieAndBegin();
    EXPECT_EQ(platform.defaults.text("~ef"), "xabcd");
  }
}

/// Makes the user defaults readable in the middle of a hand-over.
class FilesThatShowTheDisk final : public EntryFiles {
 public:
  explicit FilesThatShowTheDisk(testing::FakeUserDefaults& defaults) : defaults_(defaults) {}
  bool flush() override {
    defaults_.showDisk();
    return true;
  }
  bool areFlushed() const override { return true; }

 private:
  testing::FakeUserDefaults& defaults_;
};

TEST_F(OutboxTest, LosesAndRepeatsNothingThatWasLoggedWhenItDiesBehindALateRead) {
  append("a");
  platform.background.runDelayed();
  append("b");
  die();
  platform.defaults.hideDisk();
  begin();
  FilesThatShowTheDisk files(platform.defaults);
  outbox->setEntryFiles(files);
  outbox->open();
  append("c");
  outbox->handOverSoon();
  platform.background.runAll();
  dieAndBegin();
  EXPECT_EQ(platform.defaults.text("~ef"), "acb");
}

TEST_F(OutboxTest, KeepsTheLogWhileTheUserDefaultsCannotBeWritten) {
  platform.defaults.refuseWrites(true);
  append("a");
  platform.background.runDelayed();
  platform.outbox.prepare();
  platform.defaults.refuseWrites(false);
  dieAndBegin();
  EXPECT_EQ(platform.defaults.text("~ef"), "a");
}

/// Files that never get to the disk.
class StuckFiles final : public EntryFiles {
 public:
  bool flush() override { return false; }
  bool areFlushed() const override { return false; }
};

TEST_F(OutboxTest, HandsNoReleaseToTheDiskBeforeTheFilesItReliesOn) {
  add(1);
  outbox->handOverSoon();
  platform.settle();
  outbox->finishEnd();
  EXPECT_EQ(platform.outbox.flushCount(), 2);
  StuckFiles stuck;
  outbox->setEntryFiles(stuck);
  add(2);
  outbox->handOverSoon();
  platform.settle();
  outbox->finishEnd();
  EXPECT_EQ(platform.outbox.flushCount(), 2);
}

}  // namespace
}  // namespace kesu
