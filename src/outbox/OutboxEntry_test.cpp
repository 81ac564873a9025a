#include "outbox/OutboxEntry.h"

#include <gtest/gtest.h>

#include <limits>

namespace kesu {
namespace {

Value nested(std::size_t depth) {
  Value value = "leaf";
  while (depth-- > 0) {
    value = depth % 2 == 0 ? Value(Array{std::move(value)}) : Value(Dictionary{{"k", std::move(value)}});
  }
  return value;
}

Dictionary everyKind() {
  return {{"null", Null{}},
          {"flag", true},
          {"least", std::numeric_limits<std::int64_t>::min()},
          {"real", -0.1},
          {"infinite", std::numeric_limits<double>::infinity()},
          {"", "empty key"},
          {"no UTF-8 \xff", std::string("nul \0 and \x01", 11)},
          {"data", Data{0, 255}},
          {"date", Date{-1e12}},
          {"nulls", Array{Null{}, Null{}, Null{}}},
          {"long", std::string(100'000, 'x')},
          {"deep", nested(500)}};
}

std::string written(const std::vector<DefaultsChange>& changes, const Dictionary& entries,
                    const std::optional<Replacement>& replacement = std::nullopt) {
  PendingRecord frame;
  frame.kind = RecordKind::State;
  frame.destination = 's';
  frame.detail = 'b';
  frame.hasContext = false;
  frame.moment = 1489579320.125;
  frame.identifier[15] = 200;
  std::string bytes;
  EXPECT_TRUE(appendChanges(bytes, changes) && appendRecord(bytes, frame, entries, replacement));
  return bytes;
}

TEST(OutboxEntry, ReadsBackWhatWasWritten) {
  const auto entry = readEntry(written(
      {DefaultsChange::append("~ef", "$$a~~0"), DefaultsChange::remove("~uf"), DefaultsChange::set("n", everyKind())},
      everyKind()));
  ASSERT_TRUE(entry && entry->record && entry->changes.size() == 3);
  EXPECT_EQ(entry->changes[0].key, "~ef");
  EXPECT_EQ(entry->changes[0].value, Value("$$a~~0"));
  EXPECT_EQ(entry->changes[1].kind, DefaultsChange::Kind::Remove);
  EXPECT_EQ(entry->changes[2].value, Value(everyKind()));
  EXPECT_EQ(entry->record->kind, RecordKind::State);
  EXPECT_EQ(std::string({entry->record->destination, entry->record->detail}), "sb");
  EXPECT_FALSE(entry->record->hasContext);
  EXPECT_EQ(entry->record->moment, 1489579320.125);
  EXPECT_EQ(entry->record->identifier[15], 200);
  EXPECT_EQ(entry->record->entries, everyKind());
}

TEST(OutboxEntry, ReplacesOneAttributeInItsPlace) {
  const Value name = "new";
  const Dictionary host = {{"a", 1}, {"~e", "old"}, {"b", 2}};
  const struct {
    Dictionary entries;
    Replacement replacement;
    Dictionary read;
    const char* keys;
  } rows[] = {{host, {"~e", &name}, {{"a", 1}, {"~e", "new"}, {"b", 2}}, "a~eb"},
              {host, {"~e", nullptr}, {{"a", 1}, {"b", 2}}, "ab"},
              {{{"a", 1}}, {"~e", &name}, {{"a", 1}, {"~e", "new"}}, "a~e"},
              {{}, {"~e", nullptr}, {}, ""}};
  for (const auto& row : rows) {
    const auto entry = readEntry(written({}, row.entries, row.replacement));
    ASSERT_TRUE(entry && entry->record);
    EXPECT_EQ(entry->record->entries, row.read);
    std::string keys;
    for (const auto& [key, value] : entry->record->entries) {
      keys += key;
    }
    EXPECT_EQ(keys, row.keys);
  }
}

TEST(OutboxEntry, RefusesWhatIsNestedTooDeeply) {
  std::string bytes;
  EXPECT_TRUE(appendDictionary(bytes, {{"deep", nested(kLoggedDepthLimit - 1)}}));
  EXPECT_EQ(*readDictionary(bytes), (Dictionary{{"deep", nested(kLoggedDepthLimit - 1)}}));
  EXPECT_FALSE(appendDictionary(bytes, {{"deep", nested(kLoggedDepthLimit + 1)}}));
}

TEST(OutboxEntry, ReadsNothingFromDamagedBytes) {
  const std::string whole = written({DefaultsChange::set("n", 1)}, {{"k", Array{"v", 1.5}}, {"date", Date{}}});
  ASSERT_TRUE(readEntry(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const auto entry = readEntry(whole.substr(0, length));
    EXPECT_FALSE(entry && entry->record) << length;
  }
  EXPECT_FALSE(readEntry(whole + "x"));
  EXPECT_FALSE(readEntry("\x02" + whole.substr(1))) << "of another version";
}

}  // namespace
}  // namespace kesu
