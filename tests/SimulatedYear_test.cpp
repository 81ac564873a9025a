// A year in the life of one installation, thrown with dice and compared record by record with a second opinion.
#include <gtest/gtest.h>

#include <random>

#include "ReferenceModel.h"
#include "testing/SdkFixture.h"

namespace kesu {
namespace {

using testing::ReferenceModel;

constexpr double kDay = 86400.0;
constexpr double kBegin = 1576800000.0;  // 2019-12-20 00:00 UTC: a leap day and two new years lie ahead.
constexpr int kDays = 385;

struct Zone {
  const char* name;
  int secondsFromGmt;
  std::map<double, int> changes;
};

const Zone kZones[] = {{"Europe/Berlin", 3600, {{1585443600.0, 7200}, {1603587600.0, 3600}}},
                       {"Asia/Beirut", 7200, {{1585432800.0, 10800}, {1603573200.0, 7200}}},
                       {"Atlantic/Azores", -3600, {{1585443600.0, 0}, {1603587600.0, -3600}}},
                       {"America/New_York", -18000, {{1583650800.0, -14400}, {1604210400.0, -18000}}},
                       {"Australia/Lord_Howe", 39600, {{1586012400.0, 37800}, {1601739000.0, 39600}}},
                       {"Asia/Kathmandu", 20700, {}},
                       {"Pacific/Honolulu", -36000, {}},
                       {"", 0, {}}};

const std::pair<const char*, std::uint64_t> kScreens[] = {
    {"Home", 0x1}, {"Player", 0x2}, {"Player", 0x3}, {"Menu", 0x4}};

class SimulatedYear : public testing::SdkFixture, public ::testing::WithParamInterface<unsigned> {
 protected:
  SimulatedYear() {
    model.offset = [this](double instant) { return platform.locale.localTime(instant).secondsFromGmt; };
    model.osVersion = *platform.device.systemVersionText;
    model.vendorHash = Kesu::hash(*platform.device.vendorIdentifierText).substr(0, 64);
    model.nameHash = Kesu::hash(*platform.device.deviceNameText).substr(0, 64);
    platform.clock.set(kBegin);
    setVersion(1);
    moveTo(kZones[0]);
  }

  bool chance(double probability) { return std::bernoulli_distribution(probability)(random); }
  int pick(int count) { return std::uniform_int_distribution(0, count - 1)(random); }
  double between(double least, double most) { return std::uniform_real_distribution(least, most)(random); }

  void moveTo(const Zone& zone) {
    platform.locale.zoneName = zone.name;
    platform.locale.secondsFromGmt = zone.secondsFromGmt;
    platform.locale.offsetChanges = zone.changes;
    model.zone = zone.name;
  }

  void setVersion(int number) {
    model.appVersion = "1." + std::to_string(number);
    model.build = std::to_string(number);
    platform.bundle.dictionary.set("CFBundleShortVersionString", model.appVersion);
    platform.bundle.dictionary.set("CFBundleVersion", model.build);
  }

  /// Has both do the same, and compares what they report.
  void both(const std::function<void()>& library, const std::function<void()>& reference) {
    model.now = platform.clock.now();
    library();
    answerAll(200);
    reference();
    for (; compared < std::max(platform.http.requestCount(), model.records.size()); ++compared) {
      const auto expected =
          compared < model.records.size() ? model.records[compared] : std::pair<std::string, std::string>();
      const bool isThere = compared < platform.http.requestCount();
      const std::string found = isThere ? textOf(platform.http.request(compared)) : "nothing";
      ASSERT_EQ(found, expected.first + expected.second) << "record " << compared << " at " << model.now;
    }
  }

  /// The destination and the body in the model's form.
  static std::string textOf(const HttpRequest& request) {
    std::string text = request.headers.front().second;
    const auto body = parseJson(request.body);
    for (const auto& [key, value] : *body->dictionary()) {
      const bool isIdentifier = key == "msg_id" && value.text() != nullptr && value.text()->size() == 22;
      text += "|" + key + "=" + (isIdentifier ? "*" : value.text() != nullptr ? *value.text() : "no text");
    }
    return text;
  }

  void startProcess() {
    if (chance(0.05)) {
      setVersion(++version);
    }
    if (chance(0.02)) {
      platform.device.systemVersionText = model.osVersion = std::to_string(12 + pick(5));
    }
    // Another key restarts all counters: milestones are on their way at every season.
    const char* key =
        static_cast<int>((platform.clock.now() - kBegin) / kDay) / daysAKey % 2 == 0 ? "one key" : "another key";
    Kesu::initialize(key);
    platform.log.takeLines();
    model.start(key, platform.defaults.text("localKaid"), platform.defaults.text("localKaid2"));
    isAlive = true;
    visible.clear();
    both([] { Application::shared().didFinishLaunching(); }, [this] { model.finishLaunching(); });
  }

  void toggleScreen() {
    const auto& screen = kScreens[pick(4)];
    const std::string suffix = "0x" + std::to_string(screen.second);
    if (visible.erase(screen.second) == 0) {
      visible.insert(screen.second);
      both([&] { screenAppeared(screen.first, screen.second); }, [&] { model.appear(screen.first, suffix); });
    } else {
      both([&] { screenDisappeared(screen.first, screen.second); }, [&] { model.disappear(screen.first, suffix); });
    }
  }

  void actOnce() {
    const std::string name = "Event " + std::to_string(pick(3));
    switch (pick(10)) {
      case 0:
        return both(
            [&] {
              KesuCustomEvent::postWithEventName(name, {{"k", name}});
            },
            [&] { model.event(name, "|k=" + name); });
      case 1:
        return both([&] { Kesu::updateScreenFlowForScenesWithName("Scene", 12.34); },
                    [&] { model.scene("Scene", 12.34); });
      case 2:
        if (chance(0.2)) {
          both([&] { Kesu::setUserIdentifer(name); }, [&] { model.user(name); });
        } else if (chance(0.1)) {
          both([&] { Kesu::resetUserIdentifer(); }, [&] { model.user(""); });
        }
        return;
      default:
        return toggleScreen();
    }
  }

  void session() {
    if (isAlive && chance(0.6)) {
      both([] { Application::shared().willEnterForeground(); }, [this] { model.enterForeground(); });
    } else {
      killProcess();
      startProcess();
    }
    for (int acts = pick(9); acts > 0 && !HasFatalFailure(); --acts) {
      platform.clock.advance(chance(0.02) ? between(7000.0, 12000.0) : between(0.0, secondsAnAct));
      actOnce();
    }
    platform.clock.advance(between(0.0, secondsAnAct));
    if (chance(0.15)) {
      both([] { NotificationCenter::defaultCenter().post(kApplicationWillTerminateNotification); },
           [this] { model.terminate(); });
      killProcess();
    } else if (chance(0.15)) {
      killProcess();
    } else if (!chance(0.05)) {  // Else the next resume comes without it.
      both([] { Application::shared().didEnterBackground(); }, [this] { model.enterBackground(); });
    }
  }

  void killProcess() {
    die();
    isAlive = false;
  }

  /// Days around a change of the clock and around the new year are the ones to look at.
  bool isSpecial(double midnight) {
    const auto change = platform.locale.offsetChanges.lower_bound(midnight - 4 * kDay);
    const bool changes = change != platform.locale.offsetChanges.end() && change->first < midnight + 2 * kDay;
    return changes || midnight < kBegin + 15 * kDay || midnight > kBegin + 375 * kDay;
  }

  void day(double midnight) {
    if (chance(0.03)) {
      moveTo(kZones[pick(static_cast<int>(std::size(kZones)))]);
      if (isAlive && chance(0.5)) {
        both([] { Application::shared().localeDidChange(); }, [this] { model.localeChanged(); });
      }
    }
    const bool special = isSpecial(midnight);
    const double pause = special ? 4800.0 : kDay / 3;
    for (double time = midnight + between(0.0, pause); chance(special ? 0.97 : usesADay) && !HasFatalFailure();
         time += between(10.0, pause)) {
      platform.clock.jumpTo(std::max(time, platform.clock.now() + 1.0));
      if (chance(0.01)) {
        platform.clock.jumpTo(std::max(platform.clock.now() - between(0.0, 3 * kDay), kBegin));
      }
      session();
    }
  }

  ReferenceModel model;
  std::mt19937 random{GetParam()};
  double usesADay = std::array{0.3, 0.5, 0.7}[GetParam() % 3];
  int daysAKey = std::array{12, 8, 5}[GetParam() % 3];
  double secondsAnAct = std::array{300.0, 40.0, 8.0}[GetParam() % 3];
  std::size_t compared = 0;
  int version = 1;
  bool isAlive = false;
  std::set<std::uint64_t> visible;
};

TEST_P(SimulatedYear, AgreesWithTheReferenceRecordByRecord) {
  for (int number = 0; number < kDays && !HasFatalFailure(); ++number) {
    day(kBegin + number * kDay);
  }
  EXPECT_GT(compared, 500U);
  RecordProperty("records", static_cast<int>(compared));
}

INSTANTIATE_TEST_SUITE_P(Seeds, SimulatedYear, ::testing::Values(20170315U, 20170316U, 20170317U));

}  // namespace
}  // namespace kesu
