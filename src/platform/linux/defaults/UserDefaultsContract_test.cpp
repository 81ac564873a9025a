#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <thread>

#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "testing/AppendText.h"
#include "testing/FakeUserDefaults.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

/// One implementation under test, and how its process ends and starts again.
class DefaultsSubject {
 public:
  virtual ~DefaultsSubject() = default;
  virtual UserDefaults& defaults() = 0;
  virtual void restart() = 0;
  /// Restarts without access to the disk, and gives the access back.
  virtual void restartWithoutDisk() = 0;
  virtual void showDisk() = 0;
};

class LinuxDefaultsSubject final : public DefaultsSubject {
 public:
  UserDefaults& defaults() override { return *defaults_; }
  void restart() override {
    defaults_.reset();
    defaults_ = std::make_unique<LinuxUserDefaults>(directory_ / "home");
  }
  void restartWithoutDisk() override {
    defaults_.reset();
    std::filesystem::rename(directory_ / "home", directory_ / "hidden");
    directory_.write("home", "no directory");
    defaults_ = std::make_unique<LinuxUserDefaults>(directory_ / "home");
  }
  void showDisk() override {
    std::filesystem::remove(directory_ / "home");
    std::filesystem::rename(directory_ / "hidden", directory_ / "home");
    defaults_->checkpoint();
  }

 private:
  testing::TemporaryDirectory directory_;
  std::unique_ptr<LinuxUserDefaults> defaults_ = std::make_unique<LinuxUserDefaults>(directory_ / "home");
};

class FakeDefaultsSubject final : public DefaultsSubject {
 public:
  UserDefaults& defaults() override { return *defaults_; }
  void restart() override { defaults_ = std::make_unique<testing::FakeUserDefaults>(defaults_->keptOnDisk()); }
  void restartWithoutDisk() override {
    restart();
    defaults_->hideDisk();
  }
  void showDisk() override { defaults_->showDisk(); }

 private:
  std::unique_ptr<testing::FakeUserDefaults> defaults_ = std::make_unique<testing::FakeUserDefaults>();
};

struct DefaultsImplementation {
  const char* name;
  std::function<std::unique_ptr<DefaultsSubject>()> make;
};

class UserDefaultsContractTest : public ::testing::TestWithParam<DefaultsImplementation> {
 protected:
  UserDefaults& defaults() { return subject_->defaults(); }
  void synchronizeAndRestart() {
    EXPECT_TRUE(defaults().synchronize());
    restart();
  }
  void restart() { subject_->restart(); }
  DefaultsSubject& subject() { return *subject_; }

  // "=text" sets, "+text" appends, "-" removes, "i" sets a number, "s" synchronizes.
  void apply(const std::string& key, const std::string& step) {
    switch (step.front()) {
      case '=':
        defaults().set(key, step.substr(1));
        break;
      case '+':
        testing::appendText(defaults(), key, step.substr(1));
        break;
      case '-':
        defaults().remove(key);
        break;
      case 'r': {
        const DefaultsChange raise[] = {DefaultsChange::raise(key, 5)};
        defaults().apply(raise);
        break;
      }
      case 'i':
        defaults().set(key, 5);
        break;
      default:
        EXPECT_TRUE(defaults().synchronize());
    }
  }

  std::vector<std::string> sortedKeys() {
    std::vector<std::string> keys = defaults().keys();
    std::sort(keys.begin(), keys.end());
    return keys;
  }

 private:
  std::unique_ptr<DefaultsSubject> subject_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, UserDefaultsContractTest,
                         ::testing::Values(DefaultsImplementation{"Linux", std::make_unique<LinuxDefaultsSubject>},
                                           DefaultsImplementation{"Fake", std::make_unique<FakeDefaultsSubject>}),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(UserDefaultsContractTest, EveryKindIsReadBackEqual) {
  const Value values[] = {
      true,
      false,
      0,
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      0.1,
      2.0,
      -0.0,
      5e-324,
      std::numeric_limits<double>::infinity(),
      -std::numeric_limits<double>::infinity(),
      "",
      "text \xC3\xA9",
      std::string("a\0b", 3),
      Data{},
      Data{0, 255, 7},
      Date{1234567890.123456},
      Array{},
      Array{1, 2.5, "x", true, Data{1}, Array{}, Dictionary{}},
      Dictionary{},
      Dictionary{{"z", 1}, {"a", Dictionary{{"nested", Array{"deep"}}}}},
      Dictionary{{"\x01", Array{std::string("\0\x1b\xEE\x80\x9B", 5), Date{1e12}}}},
      Array(70, "\x02"),
  };
  for (std::size_t i = 0; i < std::size(values); ++i) {
    EXPECT_TRUE(defaults().set(std::to_string(i), values[i]));
    EXPECT_EQ(defaults().get(std::to_string(i)), values[i]) << "in memory, row " << i;
  }
  synchronizeAndRestart();
  for (std::size_t i = 0; i < std::size(values); ++i) {
    EXPECT_EQ(defaults().get(std::to_string(i)), values[i]) << "after restart, row " << i;
  }
  EXPECT_TRUE(std::signbit(defaults().real("7")));
}

TEST_P(UserDefaultsContractTest, NotANumberIsReadBack) {
  EXPECT_TRUE(defaults().set("nan", std::numeric_limits<double>::quiet_NaN()));
  synchronizeAndRestart();
  EXPECT_EQ(defaults().get("nan").value_or(Value()).kind(), Value::Kind::Real);
  EXPECT_TRUE(std::isnan(defaults().real("nan")));
}

TEST_P(UserDefaultsContractTest, RefusesWhatIsNoPropertyList) {
  const Value refused[] = {
      Null{},
      Array{1, Null{}},
      Dictionary{{"a", Array{Dictionary{{"b", Null{}}}}}},
      Array{"\xFF"},
  };
  EXPECT_TRUE(defaults().set("key", "old"));
  for (const Value& value : refused) {
    EXPECT_FALSE(defaults().set("key", value));
    EXPECT_FALSE(defaults().set("other", value));
  }
  EXPECT_EQ(defaults().text("key"), "old");
  EXPECT_EQ(sortedKeys(), std::vector<std::string>{"key"});
}

// What an array may go through: growing, shrinking, changes in the middle, other values in between.
void changeAtRandom(Array& array, std::mt19937& random) {
  const std::size_t place = array.empty() ? 0 : random() % array.size();
  switch (random() % 5) {
    case 0:
      array.insert(array.end(), random() % 100, Dictionary{{"number", random()}});
      return;
    case 1:
      array.resize(array.size() - place);
      return;
    case 2:
      array.erase(array.begin(), array.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(place, 40)));
      return;
    default:
      array.resize(std::max<std::size_t>(array.size(), 70), "filling");
      array[place] = random();
  }
}

TEST_P(UserDefaultsContractTest, ALongArrayIsReadBackWhateverChangesInIt) {
  std::mt19937 random(5);
  Array array;
  for (int step = 0; step < 300; ++step) {
    SCOPED_TRACE(step);
    changeAtRandom(array, random);
    EXPECT_TRUE(defaults().set("list", array));
    ASSERT_EQ(defaults().get("list"), Value(array));
    if (random() % 3 == 0) {
      EXPECT_TRUE(defaults().synchronize());
    }
    if (random() % 10 == 0) {
      synchronizeAndRestart();
      ASSERT_EQ(defaults().get("list"), Value(array));
    }
    if (random() % 20 == 0) {
      testing::appendText(defaults(), "list", "text");
    }
  }
  array.resize(200, 1);
  EXPECT_TRUE(defaults().set("list", array));
  EXPECT_TRUE(defaults().contains("list"));
  EXPECT_FALSE(defaults().contains("other"));
  Array refused = array;
  refused[150] = Null{};
  EXPECT_FALSE(defaults().set("list", refused));
  synchronizeAndRestart();
  EXPECT_EQ(defaults().get("list"), Value(array));
}

// Each row is a history of one key: "=x" sets, "+x" appends, "-" removes, "i" sets an integer, "s" writes.
TEST_P(UserDefaultsContractTest, HistoriesOfATextEndEquallyAfterARestart) {
  struct Row {
    std::vector<std::string> steps;
    std::optional<Value> end;
  };
  const Row rows[] = {
      {{"+a", "+b"}, Value("ab")},
      {{"+a", "s", "+b", "s", "+c"}, Value("abc")},
      {{"=a", "s", "+b"}, Value("ab")},
      {{"+a", "s", "+b", "s", "=c"}, Value("c")},
      {{"+a", "s", "=c", "s", "+d"}, Value("cd")},
      {{"+a", "s", "=a", "s", "+b"}, Value("ab")},
      {{"+a", "s", "-"}, nil},
      {{"+a", "s", "-", "s", "+b"}, Value("b")},
      {{"+a", "s", "-", "+b"}, Value("b")},
      {{"+a", "s", "-", "+b", "s", "+c"}, Value("bc")},
      {{"+a", "s", "i"}, Value(5)},
      {{"+a", "s", "i", "s", "+b"}, Value("b")},
      {{"+"}, Value("")},
      {{"-"}, nil},
      {{"=" + std::string(300, 'x'), "s", "+a", "s", "+" + std::string(600, 'y'), "s", "+b"},
       Value(std::string(300, 'x') + "a" + std::string(600, 'y') + "b")},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const std::string key = "key" + std::to_string(i);
    for (const std::string& step : rows[i].steps) {
      apply(key, step);
    }
    EXPECT_EQ(defaults().get(key), rows[i].end) << "in memory, row " << i;
  }
  synchronizeAndRestart();
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(defaults().get("key" + std::to_string(i)), rows[i].end) << "after restart, row " << i;
  }
}

// Each row: the value in the file, the steps without it, and what there is once the file was read.
TEST_P(UserDefaultsContractTest, WhatWasWrittenBeforeTheFileWasReadIsJoinedWithIt) {
  struct Row {
    std::optional<Value> saved;
    std::vector<std::string> steps;
    std::optional<Value> end;
  };
  const Row rows[] = {
      {Value("old"), {"=new"}, Value("old")},
      {Value("old"), {"+a", "+b"}, Value("oldab")},
      {Value("old"), {"=new", "+a"}, Value("olda")},
      {Value("old"), {"+a", "=new"}, Value("old")},
      {Value("old"), {"+a", "-"}, Value("old")},
      {Value("old"), {"+a", "-", "+b"}, Value("oldb")},
      {Value("old"), {"+"}, Value("old")},
      {Value(7), {"i"}, Value(7)},
      {Value(7), {"r"}, Value(7)},
      {Value(3), {"r"}, Value(5)},
      {Value("old"), {"r"}, Value(5)},
      {nil, {"r"}, Value(5)},
      {Value(7), {"+a"}, Value("a")},
      {Value(Array(100, "old")), {"=new"}, Value(Array(100, "old"))},
      {Value(Dictionary{{"a", 1}}), {"+a"}, Value("a")},
      {nil, {"=new", "+a"}, Value("newa")},
      {nil, {"=new", "-"}, nil},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    if (rows[i].saved) {
      defaults().set(std::to_string(i), *rows[i].saved);
    }
  }
  EXPECT_TRUE(defaults().synchronize());
  subject().restartWithoutDisk();
  int told = 0;
  defaults().whenLoaded([&] { ++told; });
  EXPECT_FALSE(defaults().isLoaded());
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    for (const std::string& step : rows[i].steps) {
      apply(std::to_string(i), step);
    }
  }
  EXPECT_FALSE(defaults().synchronize());
  EXPECT_EQ(told, 0);
  subject().showDisk();
  EXPECT_EQ(told, 1);
  for (const char* when : {"in memory, row ", "after restart, row "}) {
    EXPECT_TRUE(defaults().isLoaded());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
      EXPECT_EQ(defaults().get(std::to_string(i)), rows[i].end) << when << i;
    }
    synchronizeAndRestart();
  }
  defaults().whenLoaded([&] { ++told; });
  EXPECT_EQ(told, 2);
}

TEST_P(UserDefaultsContractTest, AppliesChangesOfEachKind) {
  defaults().set("gone", 1);
  defaults().set("list", Array(100, 1));
  synchronizeAndRestart();
  const DefaultsChange changes[] = {DefaultsChange::append("flow", "a"),
                                    DefaultsChange::set("number", 1),
                                    DefaultsChange::append("flow", "b"),
                                    DefaultsChange::remove("gone"),
                                    DefaultsChange::set("refused", Null{}),
                                    DefaultsChange::set("list", Array(100, 2)),
                                    DefaultsChange::set("short", Array{1, "x"}),
                                    DefaultsChange::set("bad", Array{Null{}}),
                                    DefaultsChange::set("map", Dictionary{{"a", 1}})};
  defaults().apply(changes);
  synchronizeAndRestart();
  EXPECT_EQ(sortedKeys(), (std::vector<std::string>{"flow", "list", "map", "number", "short"}));
  EXPECT_EQ(defaults().text("flow"), "ab");
  EXPECT_EQ(defaults().integer("number"), 1);
  EXPECT_EQ(defaults().get("list"), Value(Array(100, 2)));
  EXPECT_EQ(defaults().get("short"), Value(Array{1, "x"}));
  EXPECT_EQ(defaults().get("map"), Value(Dictionary{{"a", 1}}));
}

TEST_P(UserDefaultsContractTest, ASynchronizeOfAnotherThreadWritesChangesTogether) {
  constexpr int kKeys = 30;
  std::vector<std::string> keys;
  for (int i = 0; i < kKeys; ++i) {
    keys.push_back("key" + std::to_string(i));
  }
  for (int round = 0; round < 20; ++round) {
    std::atomic<bool> ends{false};
    std::thread writer([&] {
      for (int i = 0; i < 10; ++i) {
        defaults().synchronize();
      }
      ends = true;
    });
    for (int number = 0; !ends; ++number) {
      std::vector<DefaultsChange> changes;
      for (const std::string& key : keys) {
        changes.push_back(DefaultsChange::set(key, number));
      }
      defaults().apply(changes);
    }
    writer.join();
    restart();
    for (const std::string& key : keys) {
      ASSERT_EQ(defaults().get(key), defaults().get(keys.front()));
    }
  }
}

TEST_P(UserDefaultsContractTest, WhatWasNotSynchronizedIsLostAtRestart) {
  defaults().set("kept", 1);
  EXPECT_TRUE(defaults().synchronize());
  defaults().set("kept", 2);
  testing::appendText(defaults(), "lost", "x");
  defaults().checkpoint();
  restart();
  EXPECT_EQ(defaults().integer("kept"), 1);
  EXPECT_EQ(defaults().get("lost"), std::nullopt);
}

}  // namespace
}  // namespace kesu
