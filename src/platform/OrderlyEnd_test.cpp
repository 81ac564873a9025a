#include "platform/OrderlyEnd.h"

#include <gtest/gtest.h>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

/// Records on their way as the library carries them: a background task sends one; when it does not arrive, its
/// completion posts another background task, which stores it.
class OrderlyEnd : public ::testing::Test {
 protected:
  void postRecord(int number) {
    platform_.background.post([this, number] {
      platform_.http.send({}, [this, number](const HttpReply& reply) {
        if (reply.error != HttpError::None) {
          platform_.background.post([this, number] { store(number); });
        }
      });
    });
  }

  void store(int number) {
    platform_.files.writeAtomically("/home/Documents/" + std::to_string(number), "record");
    platform_.defaults.set("stored", ++stored_);
  }

  std::int64_t storedOnDisk() {
    const Dictionary disk = platform_.defaults.keptOnDisk();
    const Value* stored = disk.find("stored");
    return stored != nullptr ? stored->integerValue() : 0;
  }

  testing::ScopedPlatform platform_;
  std::int64_t stored_ = 0;
};

TEST_F(OrderlyEnd, StoresEveryRecordThatDidNotArrive) {
  for (int number = 0; number < 1000; ++number) {
    postRecord(number);
    if (number == 500) {
      platform_.settle();
      platform_.http.answer(0, 200);
    }
  }
  endOrderly(platform_.platform);
  EXPECT_EQ(platform_.files.paths().size(), 999U);
  EXPECT_EQ(storedOnDisk(), 999);
  EXPECT_EQ(platform_.mainLoop.nextDue(), std::nullopt);
}

TEST_F(OrderlyEnd, StoresLaterRecordsWhenCalledAgain) {
  endOrderly(platform_.platform);
  postRecord(1);
  endOrderly(platform_.platform);
  EXPECT_EQ(storedOnDisk(), 1);
  postRecord(2);
  endAtExit(platform_.platform);
  EXPECT_EQ(storedOnDisk(), 2);
  postRecord(3);
  endAtExit(platform_.platform);
  EXPECT_EQ(storedOnDisk(), 3);
}

TEST_F(OrderlyEnd, StoresRecordsWhenATaskEndsTheProcess) {
  postRecord(1);
  platform_.mainLoop.post([this] {
    postRecord(2);
    endAtExit(platform_.platform);
  });
  platform_.mainLoop.post([this] { postRecord(3); });
  platform_.mainLoop.pump();
  EXPECT_EQ(storedOnDisk(), 3);
}

TEST_F(OrderlyEnd, IsNotHeldUpByTaskThatPostsItselfOrByTimers) {
  std::function<void()> again = [&] {
    platform_.clock.advance(0.001);
    platform_.mainLoop.post(again);
  };
  again();
  platform_.mainLoop.schedule(0.0, true, [] { FAIL() << "no timer runs"; });
  postRecord(1);
  endOrderly(platform_.platform);
  EXPECT_EQ(storedOnDisk(), 1);
}

/// An HTTP client that only notes how long it was given.
class PatientHttp : public HttpClient {
 public:
  explicit PatientHttp(std::size_t pending) : pending_(pending) {}
  void send(HttpRequest /*request*/, Completion /*completion*/) override {}
  void sendInBackground(HttpRequest /*request*/, Completion /*completion*/) override {}
  std::size_t pendingCount() override { return pending_; }
  void shutdown(double graceSeconds) override { grace = graceSeconds; }
  void setConnectObserver(ConnectObserver /*observer*/) override {}

  double grace = -1.0;

 private:
  std::size_t pending_;
};

TEST_F(OrderlyEnd, WaitsForRepliesOnlyAsLongAsThereIsTime) {
  const struct {
    std::size_t pending;
    double spentSeconds;
    double grace;
  } cases[] = {{0, 0.0, 0.0}, {1, 0.0, 0.040}, {1, 0.010, 0.035}, {1000, 0.0, 0.040}, {1000, 0.050, 0.0}};
  for (const auto& [pending, spent, grace] : cases) {
    PatientHttp http(pending);
    Platform& all = platform_.platform;
    Platform patient{all.clock,    all.random,     all.files,       all.defaults,     all.outbox, http,
                     all.mainLoop, all.background, all.imageWorker, all.locale,       all.bundle, all.reachability,
                     all.device,   all.log,        all.urlOpener,   all.notifications};
    platform_.background.post([this, seconds = spent] { platform_.clock.advance(seconds); });
    endOrderly(patient);
    EXPECT_NEAR(http.grace, grace, 1e-9) << pending << " pending";
  }
}

/// A queue whose worker hangs: whoever waits for it waits as long as is allowed.
class HangingQueue final : public testing::ManualBackgroundQueue {
 public:
  explicit HangingQueue(testing::ManualClock& clock) : clock_(clock) {}
  bool drain(double seconds) override {
    clock_.advance(seconds);
    return false;
  }
  void shutdown(double seconds) override { clock_.advance(seconds); }

 private:
  testing::ManualClock& clock_;
};

TEST_F(OrderlyEnd, SpendsItsTimeOnceWhereNoRecordDependsOnTheQueue) {
  constexpr EndSteps kSafe = {[] {}, [] { return true; }, [] {}};
  setEndSteps(&kSafe);
  for (const auto& end : {&endOrderly, &endAtExit}) {
    PatientHttp http(1);
    HangingQueue queue(platform_.clock);
    Platform& all = platform_.platform;
    Platform hanging{all.clock,    all.random, all.files,       all.defaults,     all.outbox, http,
                     all.mainLoop, queue,      all.imageWorker, all.locale,       all.bundle, all.reachability,
                     all.device,   all.log,    all.urlOpener,   all.notifications};
    const double begin = platform_.clock.monotonic();
    end(hanging, 0.045);
    EXPECT_NEAR(platform_.clock.monotonic() - begin, 0.045, 1e-9);
  }
  setEndSteps(nullptr);
}

}  // namespace
}  // namespace kesu
