#include "platform/linux/defaults/DefaultsReader.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <memory>
#include <thread>

#include "platform/ServiceLog.h"
#include "platform/linux/defaults/LinuxUserDefaults.h"
#include "testing/AppendText.h"
#include "testing/ChildProcess.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

const std::string kStoreName = "kesu.defaults";
const std::string kContainers[] = {"dictionary", "short", "long"};

std::vector<std::string>& readerWarnings() {
  static std::vector<std::string> lines;
  return lines;
}

Array numbers(int count) {
  Array array;
  for (int i = 0; i < count; ++i) {
    array.push_back(i);
  }
  return array;
}

// What LinuxUserDefaults leaves in the file until it is asked for.
class DefaultsReaderTest : public ::testing::Test {
 protected:
  DefaultsReaderTest() {
    readerWarnings().clear();
    setServiceLogHandler([](int, const std::string& text) { readerWarnings().push_back(text); });
    defaults_->set("number", 1);
    defaults_->set("text", "t");
    defaults_->set("dictionary", Dictionary{{"a", 1}});
    defaults_->set("short", numbers(3));
    defaults_->set("long", numbers(100));
    restart();
  }
  ~DefaultsReaderTest() override { setServiceLogHandler(nullptr); }

  // Writes everything and starts again, with a file that has no journal beside it.
  void restart() {
    EXPECT_TRUE(defaults_->synchronize());
    defaults_.reset();
    defaults_ = open();
  }

  std::unique_ptr<LinuxUserDefaults> open() { return std::make_unique<LinuxUserDefaults>(directory_.path()); }

  Array longArray() {
    const std::optional<Value> value = defaults_->get("long");
    const Array* array = value ? value->array() : nullptr;
    return array != nullptr ? *array : Array();
  }

  // Makes the file large, and damages it where nobody looks who only reads: in the length of its list of free pages.
  void makeLargeAndDamaged() {
    defaults_->set("large", Array(3000, std::string(200, 'f')));
    EXPECT_TRUE(defaults_->synchronize());
    defaults_.reset();
    std::string file = directory_.read(kStoreName);
    ASSERT_GT(static_cast<std::int64_t>(file.size()), DefaultsStore::kCheckedByOpenBytes);
    file.replace(36, 4, "\1\1\1\1");
    directory_.write(kStoreName, file);
    defaults_ = open();
  }

  // As another program, with a connection of its own.
  void change(const char* sql) {
    sqlite3* database = nullptr;
    sqlite3_open((directory_ / kStoreName).c_str(), &database);
    EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
  }

  testing::TemporaryDirectory directory_;
  std::unique_ptr<LinuxUserDefaults> defaults_ = open();
};

TEST_F(DefaultsReaderTest, DamageToAnArrayOrDictionaryIsMetByItsFirstGetOnly) {
  change("UPDATE entry SET value='damaged' WHERE kind=7; UPDATE suffix SET text='damaged' WHERE (id & 255) = 2");
  for (const std::string& key : kContainers) {
    EXPECT_TRUE(defaults_->contains(key)) << key;
  }
  EXPECT_EQ(defaults_->keys().size(), 5U);
  EXPECT_EQ(defaults_->integer("number"), 1);
  EXPECT_TRUE(readerWarnings().empty());

  EXPECT_EQ(defaults_->get("dictionary"), std::nullopt);
  EXPECT_EQ(defaults_->get("short"), std::nullopt);
  EXPECT_EQ(readerWarnings().size(), 1U);
  EXPECT_FALSE(defaults_->contains("dictionary"));
  Array rest = numbers(100);
  rest.erase(rest.begin() + 32, rest.begin() + 48);
  EXPECT_EQ(longArray(), rest);
  EXPECT_TRUE(defaults_->set("dictionary", Dictionary{{"a", 2}}));
  restart();
  EXPECT_EQ(defaults_->get("dictionary"), Value(Dictionary{{"a", 2}}));
}

TEST_F(DefaultsReaderTest, AnArrayWithoutOneOfItsPartsIsWrittenWhole) {
  for (const char* damage :
       {"UPDATE suffix SET text='damaged' WHERE (id & 255) = 2", "DELETE FROM suffix WHERE (id & 255) = 2",
        "UPDATE suffix SET text=(SELECT value FROM entry WHERE key='short') WHERE (id & 255) = 2"}) {
    change(damage);
    Array array = longArray();
    EXPECT_LT(array.size(), 100U) << damage;
    array.resize(100, "new");
    EXPECT_TRUE(defaults_->set("long", array));
    restart();
    EXPECT_EQ(longArray(), array) << damage;
    restart();
  }
}

TEST_F(DefaultsReaderTest, ChangesBeforeTheFirstGetEndAsAfterIt) {
  struct Row {
    const char* name;
    std::function<void(UserDefaults& defaults, const std::string& key)> change;
    std::optional<Value> end;
  };
  Array changed = numbers(100);
  changed[50] = "changed";
  const Row rows[] = {
      {"an array", [&](auto& defaults, auto& key) { defaults.set(key, changed); }, Value(changed)},
      {"a longer one", [](auto& defaults, auto& key) { defaults.set(key, numbers(300)); }, Value(numbers(300))},
      {"a shorter one", [](auto& defaults, auto& key) { defaults.set(key, numbers(5)); }, Value(numbers(5))},
      {"a dictionary", [](auto& defaults, auto& key) { defaults.set(key, Dictionary()); }, Value(Dictionary())},
      {"a number", [](auto& defaults, auto& key) { defaults.set(key, 7); }, Value(7)},
      {"an append", [](auto& defaults, auto& key) { testing::appendText(defaults, key, "x"); }, Value("x")},
      {"nothing", [](auto& defaults, auto& key) { defaults.remove(key); }, nil},
  };
  for (const Row& row : rows) {
    for (const std::string& key : kContainers) {
      SCOPED_TRACE(key + " becomes " + row.name);
      row.change(*defaults_, key);
      EXPECT_EQ(defaults_->get(key), row.end);
      restart();
      EXPECT_EQ(defaults_->get(key), row.end);
      defaults_->set(key, key == "long" ? Value(numbers(100)) : Value(Dictionary{{"a", 1}}));
      restart();
    }
  }
  EXPECT_TRUE(readerWarnings().empty());
}

TEST_F(DefaultsReaderTest, AChangeAfterTheFirstGetWritesItsPartOnly) {
  defaults_->set("long", numbers(3000));
  restart();
  Array array = longArray();
  array[1000] = "changed";
  defaults_->set("long", array);
  EXPECT_TRUE(defaults_->synchronize());
  EXPECT_LT(directory_.read(kStoreName + "-wal").size(), directory_.read(kStoreName).size() / 10);
  restart();
  EXPECT_EQ(longArray(), array);
}

TEST_F(DefaultsReaderTest, AnArrayThatAnotherProcessChangesBeforeTheFirstGetIsNotMixed) {
  EXPECT_TRUE(defaults_->contains("long"));
  const Array theirs(200, "theirs");
  {
    const auto other = open();
    other->set("long", theirs);
    EXPECT_TRUE(other->synchronize());
  }
  Array ours = longArray();
  EXPECT_TRUE(ours == theirs || ours == numbers(100));
  ours[20] = "ours";
  defaults_->set("long", ours);
  restart();
  EXPECT_EQ(longArray(), ours);
}

TEST_F(DefaultsReaderTest, ALargeFileIsLookedThroughByTheFirstCheckpoint) {
  makeLargeAndDamaged();
  EXPECT_EQ(defaults_->integer("number"), 1);
  defaults_->set("number", 2);
  EXPECT_TRUE(readerWarnings().empty());
  defaults_->checkpoint();
  defaults_->checkpoint();
  EXPECT_EQ(readerWarnings().size(), 1U);
  EXPECT_FALSE(directory_.read(kStoreName + ".corrupt").empty());
  restart();
  EXPECT_EQ(defaults_->integer("number"), 2);
  EXPECT_EQ(longArray(), numbers(100));
  EXPECT_EQ(defaults_->get("large"), Value(Array(3000, std::string(200, 'f'))));
  defaults_->checkpoint();
  EXPECT_EQ(readerWarnings().size(), 1U);
}

TEST_F(DefaultsReaderTest, AFileThatIsSpoiledBeforeTheFirstGetCostsOnlyWhatWasNotRead) {
  makeLargeAndDamaged();
  EXPECT_EQ(longArray(), numbers(100));
  directory_.write(kStoreName, std::string(900'000, 'x'));
  EXPECT_EQ(defaults_->get("large"), std::nullopt);
  EXPECT_EQ(readerWarnings().size(), 1U);
  restart();
  EXPECT_EQ(defaults_->text("text"), "t");
  EXPECT_EQ(longArray(), numbers(100));
  EXPECT_FALSE(defaults_->contains("large"));
  EXPECT_EQ(readerWarnings().size(), 1U);
}

TEST_F(DefaultsReaderTest, ThreadsMayAllComeFirst) {
  for (int round = 0; round < 10; ++round) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([this, thread] {
        EXPECT_EQ(defaults_->get("dictionary"), Value(Dictionary{{"a", 1}}));
        EXPECT_GE(longArray().size(), 100U);
        defaults_->set("long", numbers(100 + thread));
        EXPECT_TRUE(defaults_->synchronize());
        defaults_->checkpoint();
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    const Array last = longArray();
    restart();
    EXPECT_EQ(longArray(), last);
    restart();
  }
  EXPECT_TRUE(readerWarnings().empty());
}

}  // namespace
}  // namespace kesu
