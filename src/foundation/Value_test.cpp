#include <gtest/gtest.h>
#include <kesu/foundation/Value.h>

#include <cmath>
#include <limits>

namespace kesu {
namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();

std::vector<std::string> keysOf(const Dictionary& dictionary) {
  std::vector<std::string> keys;
  for (const auto& entry : dictionary) {
    keys.push_back(entry.key);
  }
  return keys;
}

Dictionary numbered(int count) {
  Dictionary dictionary;
  for (int i = 0; i < count; ++i) {
    dictionary.set("key" + std::to_string(i), i);
  }
  return dictionary;
}

// Arrays and dictionaries by turns around one text.
Value nested(int levels, const char* core = "core") {
  Value value(core);
  for (int i = 0; i < levels; ++i) {
    if (i % 2 == 0) {
      Array array;
      array.push_back(std::move(value));
      value = Value(std::move(array));
    } else {
      Dictionary dictionary;
      dictionary.set("in", std::move(value));
      value = Value(std::move(dictionary));
    }
  }
  return value;
}

TEST(DictionaryTest, KeepsInsertionOrderAndReplacesInPlace) {
  Dictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}};
  dictionary.set("c", 4);
  dictionary.set("a", "new");
  EXPECT_EQ(keysOf(dictionary), (std::vector<std::string>{"b", "a", "c"}));
  EXPECT_EQ(*dictionary.find("b"), Value(3));
  EXPECT_EQ(*dictionary.findText("a"), "new");
  EXPECT_EQ(dictionary.findText("c"), nullptr);
  EXPECT_EQ(dictionary.find("d"), nullptr);
}

// Both with and without the index.
TEST(DictionaryTest, FindsWhatIsThereAfterSettingAndRemoving) {
  for (const int count : {3, 31, 32, 33, 34, 1000}) {
    Dictionary dictionary = numbered(count);
    EXPECT_FALSE(dictionary.remove("missing"));
    for (int i = 0; i < count; i += 3) {
      EXPECT_TRUE(dictionary.remove("key" + std::to_string(i)));
    }
    dictionary.removeIf([](const Dictionary::Entry& entry) { return *entry.value.integer() % 3 == 1; });
    for (int i = 0; i < count; ++i) {
      EXPECT_EQ(dictionary.contains("key" + std::to_string(i)), i % 3 == 2) << count << " " << i;
    }
    dictionary.set("key0", "again");
    EXPECT_EQ(keysOf(dictionary).back(), "key0") << count;
  }
}

TEST(DictionaryTest, CopiesAreDeepAndMovesLeaveNothing) {
  for (const int count : {5, 100}) {
    Dictionary original = numbered(count);
    Dictionary copy = original;
    copy.set("key3", "changed");
    copy.set("more", true);
    EXPECT_EQ(*original.find("key3"), Value(3));
    EXPECT_FALSE(original.contains("more"));

    const Dictionary moved = std::move(original);
    original = Dictionary{{"fresh", 1}};
    EXPECT_EQ(moved, numbered(count));
    EXPECT_EQ(original.size(), 1u);
    copy.clear();
    EXPECT_FALSE(copy.contains("key3"));
  }
}

TEST(DictionaryTest, EqualityIgnoresOrderOnly) {
  const Dictionary one{{"a", 1}, {"b", Dictionary{{"x", 1}, {"y", 2}}}};
  EXPECT_EQ(one, (Dictionary{{"b", Dictionary{{"y", 2}, {"x", 1}}}, {"a", 1}}));
  EXPECT_NE(one, (Dictionary{{"a", 1}}));
  EXPECT_NE(one, (Dictionary{{"a", 1}, {"c", Dictionary{{"x", 1}, {"y", 2}}}}));
  EXPECT_NE(one, (Dictionary{{"a", 1}, {"b", Dictionary{{"x", 1}, {"y", 3}}}}));
}

TEST(ValueTest, EqualityNeedsTheSameKindAndContent) {
  const std::vector<Value> different = {Null{},
                                        false,
                                        true,
                                        0,
                                        4,
                                        4.0,
                                        "",
                                        "4",
                                        Data{},
                                        Data{4},
                                        Date{0},
                                        Date{4},
                                        Array{},
                                        Array{4},
                                        Array{4, 4},
                                        Array{Value(Array{})},
                                        Dictionary{},
                                        Dictionary{{"4", 4}}};
  for (std::size_t i = 0; i < different.size(); ++i) {
    for (std::size_t j = 0; j < different.size(); ++j) {
      EXPECT_EQ(different[i] == different[j], i == j) << i << " " << j;
    }
  }
}

TEST(ValueTest, TakesEveryKindOfNumberAndText) {
  EXPECT_EQ(Value(std::uint8_t{200}), Value(200));
  EXPECT_EQ(Value(2.5f), Value(2.5));
  EXPECT_EQ(Value(static_cast<std::uint64_t>(kLargest)), Value(kLargest));
  EXPECT_EQ(Value(std::numeric_limits<std::uint64_t>::max()), Value(18446744073709551615.0));
  EXPECT_EQ(Value(std::string_view("text")), Value(std::string("text")));
  EXPECT_TRUE(Value(static_cast<const char*>(nullptr)).isNull());
  static_assert(!std::is_constructible_v<Value, int*>, "a pointer is no bool");
}

struct NumberRow {
  Value value;
  std::int64_t integer;
  double real;
};

TEST(ValueTest, ReadsNumbersOutOfEveryKind) {
  const double huge = static_cast<double>(kLargest);
  const std::vector<NumberRow> rows = {{true, 1, 1},
                                       {-7, -7, -7},
                                       {2.9, 2, 2.9},
                                       {-2.9, -2, -2.9},
                                       {1e300, kLargest, 1e300},
                                       {-1e300, kSmallest, -1e300},
                                       {kLargest, kLargest, huge},
                                       {-huge, kSmallest, -huge},
                                       {"", 0, 0},
                                       {"  ", 0, 0},
                                       {" \t42abc", 42, 42},
                                       {"+5", 5, 5},
                                       {"+-5", 0, 0},
                                       {"-5.75e1x", -5, -57.5},
                                       {".5", 0, 0.5},
                                       {"abc", 0, 0},
                                       {"inf", 0, 0},
                                       {"nan", 0, 0},
                                       {"-", 0, 0},
                                       {"99999999999999999999", kLargest, 1e20},
                                       {"-99999999999999999999", kSmallest, -1e20},
                                       {"1e999", 1, 0},
                                       {Null{}, 0, 0},
                                       {Date{5}, 0, 0},
                                       {Array{5}, 0, 0}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].value.integerValue(), rows[i].integer) << "row " << i;
    EXPECT_EQ(rows[i].value.realValue(), rows[i].real) << "row " << i;
  }
  EXPECT_EQ(Value(std::nan("")).integerValue(), 0);
}

TEST(ValueTest, SurvivesBeingAssignedPartsOfItself) {
  Value value(Array{Dictionary{{"in", "core"}}});
  value = Value(value.array()->front());
  value = std::move(*value.dictionary()->find("in"));
  EXPECT_EQ(value, Value("core"));

  Dictionary outer{{"in", Dictionary{{"x", 1}}}};
  outer = *outer.find("in")->dictionary();
  EXPECT_EQ(outer, (Dictionary{{"x", 1}}));

  Dictionary large = numbered(100);
  large.set("in", numbered(50));
  large = std::move(*large.find("in")->dictionary());
  EXPECT_EQ(large, numbered(50));

  Array& same = *(value = Array{1, 2}).array();
  value = same;
  EXPECT_EQ(value, Value(Array{1, 2}));
}

TEST(ValueTest, CopiesComparesAndDestroysAHundredThousandLevels) {
  constexpr int kLevels = 100'000;
  const Value deep = nested(kLevels);
  const Value copy = deep;
  EXPECT_TRUE(copy == deep);
  EXPECT_FALSE(copy == nested(kLevels, "other"));
  const Dictionary inDictionary{{"deep", deep}};
  EXPECT_TRUE(Dictionary(inDictionary) == inDictionary);
}

TEST(ObjectTest, IsMadeFromWhateverAHostPasses) {
  const std::string text = "text";
  const auto same = [](const Object& object, const Value& value) { return object && *object == value; };
  EXPECT_TRUE(same("text", "text"));
  EXPECT_TRUE(same(text, "text"));
  EXPECT_TRUE(same(std::string_view(text), "text"));
  EXPECT_TRUE(same(7, 7));
  EXPECT_TRUE(same(std::int64_t{7}, 7));
  EXPECT_TRUE(same(1.5, 1.5));
  EXPECT_TRUE(same(false, false));
  EXPECT_TRUE(same(Null{}, Null{}));
  EXPECT_TRUE(same(Value("v"), "v"));
  EXPECT_TRUE(same(Dictionary{{"a", 1}}, Dictionary{{"a", 1}}));
  EXPECT_TRUE(same(Array{1}, Array{1}));
}

TEST(ObjectTest, TellsAbsentFromNull) {
  const auto isAbsent = [](const Object& object) { return !object.has_value(); };
  EXPECT_TRUE(isAbsent(nil));
  EXPECT_TRUE(isAbsent({}));
  EXPECT_TRUE(isAbsent(static_cast<const char*>(nullptr)));
  EXPECT_TRUE(isAbsent(std::optional<Value>()));
  EXPECT_FALSE(isAbsent(Null{}));
}

}  // namespace
}  // namespace kesu
