#include <gtest/gtest.h>

#include <limits>

#include "foundation/Digest.h"
#include "platform/CalendarFields.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class FixedRandom : public Random {
 public:
  explicit FixedRandom(std::uint8_t byte) : byte_(byte) {}
  void fill(std::span<std::uint8_t> bytes) override { std::fill(bytes.begin(), bytes.end(), byte_); }

 private:
  std::uint8_t byte_;
};

TEST(Random, MakesVersionFourIdentifiers) {
  const auto text = [](Random& random) { return hexLower(random.uuid()); };
  FixedRandom ones(0xFF);
  FixedRandom zeros(0x00);
  testing::SequentialRandom counting;
  EXPECT_EQ(text(ones), "ffffffffffff4fffbfffffffffffffff");
  EXPECT_EQ(text(zeros), "00000000000040008000000000000000");
  EXPECT_EQ(text(counting), "00000000000040008000000000000001");
  EXPECT_EQ(text(counting), "00000000000040008000000000000002");
}

TEST(Bundle, GivesNumbersAndFlagsOfInfoAsText) {
  testing::FakeBundle bundle;
  bundle.dictionary = {{"text", "1.2"}, {"integer", -3}, {"real", 1.5},
                       {"whole", 2.0},  {"flag", true},  {"array", Array{}}};
  EXPECT_EQ(bundle.infoText("text"), "1.2");
  EXPECT_EQ(bundle.infoText("integer"), "-3");
  EXPECT_EQ(bundle.infoText("real"), "1.5");
  EXPECT_EQ(bundle.infoText("whole"), "2");
  EXPECT_EQ(bundle.infoText("flag"), "1");
  EXPECT_EQ(bundle.infoText("array"), std::nullopt);
  EXPECT_EQ(bundle.infoText("missing"), std::nullopt);
}

TEST(CalendarFields, WriteTimestamps) {
  const struct {
    double seconds;
    int offset;
    const char* text;
  } cases[] = {{1489579320.0, 0, "2017-03-15 12:02:00 +0000"},
               {1489579320.999, 20700, "2017-03-15 17:47:00 +0545"},
               {1489579320.0, -12600, "2017-03-15 08:32:00 -0330"},
               {-0.5, 0, "1969-12-31 23:59:59 +0000"},
               {-1025740800.0, 1172, "1937-07-01 00:19:32 +001932"},
               {951782399.0, 1, "2000-02-29 00:00:00 +000001"},
               {1e300, 0, "9999-12-30 00:00:00 +0000"},
               {-std::numeric_limits<double>::infinity(), 0, "0001-01-02 00:00:00 +0000"},
               {std::numeric_limits<double>::quiet_NaN(), 0, "1970-01-01 00:00:00 +0000"}};
  for (const auto& [seconds, offset, text] : cases) {
    EXPECT_EQ(timestampText(testing::calendarFields(seconds, offset)), text);
  }
  const LocalTime leap = testing::calendarFields(1483142400.0, 0);  // Saturday, 2016-12-31.
  EXPECT_EQ(leap.weekday, 7);
  EXPECT_EQ(leap.dayOfYear, 366);
}

TEST(Platform, IsTheInstalledOneOrMadeByTheDefaultInstaller) {
  static testing::ScopedPlatform* made = nullptr;
  EXPECT_FALSE(Platform::isInstalled());
  EXPECT_DEATH(Platform::current(), "no platform is installed");
  Platform::setDefaultInstaller([] { made = std::make_unique<testing::ScopedPlatform>().release(); });
  const MainLoop* shared = &MainLoop::shared();
  EXPECT_EQ(shared, &made->mainLoop);
  EXPECT_EQ(&NotificationCenter::defaultCenter(), &made->notifications);
  Platform::setDefaultInstaller(nullptr);
  const std::unique_ptr<testing::ScopedPlatform> ended(made);
}

class Notifications : public ::testing::Test {
 protected:
  NotificationCenter::Observer note(const std::string& name) {
    return [this, name](const Notification&) { told_ += name; };
  }
  std::string takeTold() { return std::exchange(told_, {}); }

  NotificationCenter center_;
  const int sender_ = 0;
  const int other_ = 0;

 private:
  std::string told_;
};

TEST_F(Notifications, ReachObserversOfNameAndObjectInOrder) {
  center_.addObserver("launch", nullptr, note("a"));
  center_.addObserver("launch", &sender_, note("b"));
  center_.addObserver("end", nullptr, note("c"));
  center_.post("launch", &sender_);
  EXPECT_EQ(takeTold(), "ab");
  center_.post("launch", &other_);
  center_.post("launch");
  center_.post("unknown");
  EXPECT_EQ(takeTold(), "aa");
}

TEST_F(Notifications, CarryNameObjectAndInfo) {
  center_.addObserver("launch", nullptr, [this](const Notification& notification) {
    EXPECT_EQ(notification.name, "launch");
    EXPECT_EQ(notification.object, &sender_);
    EXPECT_EQ(*notification.userInfo.findText("key"), "value");
    note("a")(notification);
  });
  center_.post("launch", &sender_, {{"key", "value"}});
  EXPECT_EQ(takeTold(), "a");
}

TEST_F(Notifications, ObserversMayBeAddedAndRemovedMeanwhile) {
  NotificationCenter::Token first = 0;
  NotificationCenter::Token second = 0;
  first = center_.addObserver("n", nullptr, [&](const Notification& notification) {
    note("a")(notification);
    center_.removeObserver(first);
    center_.removeObserver(second);
    center_.addObserver("n", nullptr, note("c"));
  });
  second = center_.addObserver("n", nullptr, note("b"));
  center_.post("n");
  EXPECT_EQ(takeTold(), "a") << "removed and added observers are not told this time";
  center_.post("n");
  EXPECT_EQ(takeTold(), "c");
  center_.removeObserver(first);
}

}  // namespace
}  // namespace kesu
