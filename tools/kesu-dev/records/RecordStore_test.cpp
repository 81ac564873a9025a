#include "tools/kesu-dev/records/RecordStore.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "foundation/Json.h"
#include "testing/TemporaryDirectory.h"
#include "testing/TestRecord.h"

namespace kesu::dev {
namespace {

using Which = RecordStore::Which;

class RecordStoreTest : public ::testing::Test {
 protected:
  std::unique_ptr<RecordStore> open(const std::string& file = {}) { return RecordStore::open(file, error_); }

  std::string fileIn() const { return directory_ / "records.db"; }

  static StoredRecord bad(std::string messageId) {
    StoredRecord record = testStored("e", std::move(messageId));
    record.reasons = {"first", "second"};
    return record;
  }

  static std::string ids(const std::vector<StoredRecord>& records) {
    std::string text;
    for (const StoredRecord& record : records) {
      text += std::to_string(record.id) + " ";
    }
    return text;
  }

  const kesu::testing::TemporaryDirectory directory_;
  std::string error_;
};

TEST_F(RecordStoreTest, ReadsTheRecordsThatWereAdded) {
  const auto store = open();
  StoredRecord record = bad("a");
  record.headers = R"({"t":"e"})";
  record.wasStored = true;
  record.body = std::string("no\0JSON\xFF", 8);
  record.bodyIsObject = false;
  ASSERT_TRUE(store->add(record));
  const StoredRecord read = store->read(Which::All, 0, 10).at(0);
  EXPECT_EQ(read.id, 1);
  EXPECT_EQ(read.body, record.body);
  EXPECT_EQ(read.headers, record.headers);
  EXPECT_EQ(read.reasons, record.reasons);
  EXPECT_EQ(read.arrivedMs, record.arrivedMs);
  EXPECT_TRUE(read.wasStored);
}

TEST_F(RecordStoreTest, MarksEveryCopyAsDuplicateOfTheFirst) {
  const auto store = open();
  store->add(testStored("e", "a"));
  store->add(testStored("e", "b"));
  EXPECT_EQ(store->add(testStored("e", "b"))->duplicateOf, 2);
  EXPECT_EQ(store->add(testStored("e", "b"))->duplicateOf, 2);
  EXPECT_EQ(store->add(testStored("n", ""))->duplicateOf, 0);
  EXPECT_EQ(store->add(testStored("n", ""))->duplicateOf, 0);
}

TEST_F(RecordStoreTest, ReadsPagesOfGoodAndBad) {
  const auto store = open();
  store->add(testStored("e", "a"));
  store->add(bad("b"));
  store->add(testStored("e", "c"));
  store->add(bad("d"));
  EXPECT_EQ(ids(store->read(Which::Good, 0, 10)), "1 3 ");
  EXPECT_EQ(ids(store->read(Which::Bad, 0, 10)), "2 4 ");
  EXPECT_EQ(ids(store->read(Which::All, 1, 2)), "2 3 ");
}

TEST_F(RecordStoreTest, CountsByDestination) {
  const auto store = open();
  store->add(testStored("s", "a"));
  store->add(testStored("s", "a"));
  store->add(bad("b"));
  const std::string expected = R"({"total":3,"good":2,"bad":1,"duplicates":1,"wasStored":0,"destinations":{)"
                               R"("e":{"total":1,"good":0,"bad":1,"duplicates":0,"wasStored":0,"name":"events"},)"
                               R"("s":{"total":2,"good":2,"bad":0,"duplicates":1,"wasStored":0,"name":"states"}}})";
  EXPECT_EQ(jsonText(describeCounts(store->counts())), expected);
}

TEST_F(RecordStoreTest, ResetRemovesRecordsAndContinuesToCount) {
  const auto store = open();
  store->add(testStored("e", "a"));
  ASSERT_TRUE(store->reset());
  EXPECT_EQ(sum(store->counts()).total(), 0);
  const auto next = store->add(testStored("e", "a"));
  EXPECT_EQ(next->id, 2);
  EXPECT_EQ(next->duplicateOf, 0);
}

TEST_F(RecordStoreTest, FileKeepsRecordsCountsAndIds) {
  auto store = open(fileIn());
  store->add(testStored("e", "a"));
  const std::string identity = store->identity();
  store = open(fileIn());
  EXPECT_EQ(store->identity(), identity);
  EXPECT_NE(open()->identity(), identity);
  EXPECT_EQ(sum(store->counts()).good, 1);
  EXPECT_EQ(store->news().lastId, 1);
  EXPECT_EQ(store->add(testStored("e", "a"))->duplicateOf, 1);
}

TEST_F(RecordStoreTest, SaysWhyAFileCannotBeOpened) {
  EXPECT_EQ(open(directory_ / "nowhere/x.db"), nullptr);
  EXPECT_NE(error_, "");
  error_.clear();
  std::ofstream(fileIn()) << "this is a text file and surely no database at all";
  EXPECT_EQ(open(fileIn()), nullptr);
  EXPECT_NE(error_, "");
}

TEST_F(RecordStoreTest, WakesFollowersOnNewsAndOnInterrupt) {
  const auto store = open();
  const RecordStore::News before = store->news();
  RecordStore::News after;
  std::thread follower([&] { after = store->waitForNews(before, std::chrono::minutes(1)); });
  store->add(testStored("e", "a"));
  follower.join();
  EXPECT_EQ(after.lastId, 1);
}

TEST_F(RecordStoreTest, InterruptWakesFollowersWithoutNews) {
  const auto store = open();
  std::atomic<bool> awake{false};
  std::thread follower([&] {
    store->waitForNews(store->news(), std::chrono::hours(1));
    awake = true;
  });
  while (!awake) {
    store->interrupt();
    std::this_thread::yield();
  }
  follower.join();
  EXPECT_EQ(store->news().lastId, 0);
}

TEST(StoredRecord, EmbedsTheBodyByteForByteOnOneLine) {
  StoredRecord record = testStored("e");
  record.headers = R"({"t":"e"})";
  record.body = "\xEF\xBB\xBF{\"a\":1.50,\r\n\"b\":[]}";
  std::string text;
  appendJson(record, text);
  EXPECT_NE(text.find(R"("headers":{"t":"e"},"record":{"a":1.50,  "b":[]}})"), std::string::npos) << text;
  EXPECT_TRUE(parseJson(text));
}

TEST(StoredRecord, ReadsTheJsonThatItWrote) {
  StoredRecord record = testStored("s", "abc");
  record.id = 7;
  record.headers = R"({"t":"s"})";
  record.reasons = {"because \"so\""};
  record.duplicateOf = 3;
  record.wasStored = true;
  for (const bool isObject : {true, false}) {
    record.bodyIsObject = isObject;
    record.messageId = isObject ? "abc" : "";
    std::string text;
    appendJson(record, text);
    const auto read = storedRecordFromJson(parseJson(text).value_or(Value()));
    ASSERT_TRUE(read) << text;
    std::string again;
    appendJson(*read, again);
    EXPECT_EQ(again, text);
  }
}

}  // namespace
}  // namespace kesu::dev
