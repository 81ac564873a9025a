#include "platform/linux/LinuxMemoryPressure.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include "testing/RawConnection.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

constexpr int kPressureDeadlineMilliseconds = 10'000;
constexpr double kUnhurriedSeconds = 60.0;

/// Two ends of a connection; what one sends as urgent data makes the other one ready as a pressure file would be.
class UrgentPair {
 public:
  UrgentPair() {
    const testing::SilentServer server;
    sender_ = testing::sendRaw(server.port(), "");
    receiver_ = UniqueFd(::accept4(server.fd(), nullptr, nullptr, SOCK_CLOEXEC));
  }

  void fire() const {
    ::send(sender_.get(), "!", 1, MSG_OOB);
    pollfd wanted{receiver(), POLLPRI, 0};
    EXPECT_EQ(::poll(&wanted, 1, kPressureDeadlineMilliseconds), 1);
  }
  void sendOrdinary() const { ::send(sender_.get(), ".", 1, 0); }

  /// The event is over: the next one is told anew.
  void clear() const {
    char byte = 0;
    EXPECT_EQ(::recv(receiver(), &byte, 1, MSG_OOB), 1);
  }
  UniqueFd duplicate() const { return UniqueFd(::fcntl(receiver(), F_DUPFD_CLOEXEC, 0)); }

 private:
  int receiver() const { return receiver_.get(); }

  UniqueFd sender_;
  UniqueFd receiver_;
};

bool isReadableNow(int fd) {
  pollfd wanted{fd, POLLIN, 0};
  return ::poll(&wanted, 1, 0) == 1;
}

class MemoryPressureTest : public ::testing::Test {
 protected:
  LinuxMemoryPressure::Opener pairOpener() {
    return [this] { return pair_.duplicate(); };
  }

  UrgentPair pair_;
  LinuxMainLoop loop_;
  double seconds_ = 5.0;
  int warnings_ = 0;
};

TEST_F(MemoryPressureTest, WarnsInsidePumpAndNotAgainForAWhile) {
  LinuxMemoryPressure pressure(
      loop_, [this] { return seconds_; }, [this] { ++warnings_; }, pairOpener());
  ASSERT_TRUE(pressure.start());
  pair_.sendOrdinary();
  EXPECT_FALSE(isReadableNow(loop_.fd())) << "a pressure file can always be read and written";
  EXPECT_EQ(loop_.pump(kUnhurriedSeconds), 0U);
  EXPECT_EQ(loop_.nextDue(), std::nullopt);
  for (const auto& [passed, expected] : {std::pair{0.0, 1}, {9.9, 1}, {0.2, 2}, {30.0, 3}}) {
    seconds_ += passed;
    pair_.fire();
    EXPECT_TRUE(isReadableNow(loop_.fd()));
    EXPECT_EQ(loop_.pump(kUnhurriedSeconds), 1U);
    EXPECT_EQ(warnings_, expected) << seconds_;
    pair_.clear();
    EXPECT_FALSE(isReadableNow(loop_.fd()));
    EXPECT_EQ(loop_.pump(kUnhurriedSeconds), 0U);
  }
}

TEST_F(MemoryPressureTest, SaysNothingAfterItsEnd) {
  {
    LinuxMemoryPressure pressure(
        loop_, [this] { return seconds_; }, [this] { ++warnings_; }, pairOpener());
    ASSERT_TRUE(pressure.start());
    pair_.fire();
  }
  EXPECT_FALSE(isReadableNow(loop_.fd()));
  EXPECT_EQ(loop_.pump(kUnhurriedSeconds), 0U);
  EXPECT_EQ(warnings_, 0);
}

TEST_F(MemoryPressureTest, DoesNothingWhereTheSystemOffersNothing) {
  int opened = 0;
  const testing::TemporaryDirectory directory;
  directory.write("plain", "");
  const LinuxMemoryPressure::Opener openers[] = {
      [] { return UniqueFd(); },
      [&] { return ++opened == 1 ? pair_.duplicate() : UniqueFd(); },
      [&] { return LinuxMemoryPressure::openTrigger(directory / "missing"); },
      [&] { return LinuxMemoryPressure::openTrigger(directory / "plain"); },
  };
  for (const auto& opener : openers) {
    LinuxMemoryPressure pressure(
        loop_, [this] { return seconds_; }, [this] { ++warnings_; }, opener);
    EXPECT_FALSE(pressure.start());
    pair_.fire();
    EXPECT_FALSE(isReadableNow(loop_.fd()));
    EXPECT_EQ(loop_.pump(kUnhurriedSeconds), 0U);
    pair_.clear();
  }
}

TEST_F(MemoryPressureTest, WritesItsTriggerWithoutWaiting) {
  const testing::TemporaryDirectory directory;
  const std::string path = directory / "pressure";
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const UniqueFd trigger = LinuxMemoryPressure::openTrigger(path);
  ASSERT_TRUE(trigger);
  char written[64] = {};
  EXPECT_EQ(::read(trigger.get(), written, sizeof written), 20);
  EXPECT_STREQ(written, "some 150000 2000000");
}

TEST_F(MemoryPressureTest, KernelTakesTheTrigger) {
  if (!LinuxMemoryPressure::openTrigger(LinuxMemoryPressure::kPressureFile)) {
    GTEST_SKIP() << "this kernel or container offers no pressure trigger";
  }
  LinuxMemoryPressure pressure(
      loop_, [this] { return seconds_; }, [this] { ++warnings_; });
  EXPECT_TRUE(pressure.start());
}

}  // namespace
}  // namespace kesu
