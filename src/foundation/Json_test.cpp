#include "foundation/Json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "testing/MutatedReplies.h"
#include "testing/NestedValues.h"

namespace kesu {
namespace {

using testing::nestedArrays;
using testing::repeated;

std::string written(const Value& value) {
  std::string out = "left over";
  EXPECT_EQ(writeJson(value, out), JsonStatus::Ok);
  return out;
}

TEST(WriteJsonTest, WritesCompactTextInInsertionOrder) {
  const Dictionary record{{"b", "x"},
                          {"a", Array{1, -2.5, true, false, Null{}, "", Array{}, Dictionary{}}},
                          {"c", Dictionary{{"z", 4.0}, {"y", std::numeric_limits<std::int64_t>::min()}}}};
  std::string out;
  EXPECT_EQ(writeJson(record, out), JsonStatus::Ok);
  EXPECT_EQ(out, R"({"b":"x","a":[1,-2.5,true,false,null,"",[],{}],"c":{"z":4,"y":-9223372036854775808}})");
  EXPECT_EQ(writeJson(Dictionary{}, out), JsonStatus::Ok);
  EXPECT_EQ(out, "{}");
}

TEST(WriteJsonTest, EscapesWhatJsonReservesAndNothingElse) {
  const std::string text("\"\\/\b\f\n\r\t\x01\x1f\x7f\0\xC3\xA4\xF0\x9F\x98\x80", 18);
  EXPECT_EQ(written(text), "\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7f\\u0000\xC3\xA4\xF0\x9F\x98\x80\"");
  EXPECT_EQ(written(Dictionary{{"a\"b", 1}}), R"({"a\"b":1})");
}

TEST(WriteJsonTest, FindsWhatToEscapeAtAnyPlace) {
  for (std::size_t place = 0; place < 20; ++place) {
    for (int byte = 0; byte < 0x80; ++byte) {
      std::string text(20, 'a');
      text[place] = static_cast<char>(byte);
      const bool isEscaped = byte < 0x20 || byte == '"' || byte == '\\';
      const std::string wanted = '"' + text + '"';
      ASSERT_EQ(written(text) != wanted, isEscaped) << place << "/" << byte;
      ASSERT_EQ(parseJson(written(text)), Value(text)) << place << "/" << byte;
    }
    std::string text(20, '"');
    text[place] = '\xE4';
    std::string out;
    ASSERT_EQ(writeJson(Value(text), out), JsonStatus::BadText) << place;
  }
}

TEST(WriteJsonTest, WritesFieldsAsTheDictionaryTheyWouldMake) {
  const Dictionary record{{"b", std::string(500, '\n')}, {"a", Array{1, Dictionary{{"z", ""}}}}, {"", 1e300}};
  std::vector<JsonField> fields;
  for (const auto& [key, value] : record) {
    fields.push_back({key, &value});
  }
  std::string out = "left over";
  EXPECT_EQ(writeJson(fields, out), JsonStatus::Ok);
  EXPECT_EQ(out, written(record));
  EXPECT_EQ(writeJson(std::span<const JsonField>(), out), JsonStatus::Ok);
  EXPECT_EQ(out, "{}");
}

TEST(WriteJsonTest, RefusesWhatJsonCannotCarry) {
  const std::vector<std::pair<Value, JsonStatus>> rows = {
      {Date{0}, JsonStatus::NotValid},         {Data{1}, JsonStatus::NotValid},
      {std::nan(""), JsonStatus::NotValid},    {HUGE_VAL, JsonStatus::NotValid},
      {-HUGE_VAL, JsonStatus::NotValid},       {"\xFF", JsonStatus::BadText},
      {"\xED\xA0\x80", JsonStatus::BadText},   {"\xC0\x80", JsonStatus::BadText},
      {nestedArrays(511), JsonStatus::TooDeep}};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::string out = "left over";
    EXPECT_EQ(writeJson(Dictionary{{"first", 1}, {"in", Array{rows[i].first}}}, out), rows[i].second) << "row " << i;
    EXPECT_EQ(out, "") << "row " << i;
  }
  std::string out;
  EXPECT_EQ(writeJson(Dictionary{{"\xE4", 1}}, out), JsonStatus::BadText);
  EXPECT_EQ(writeJson(nestedArrays(512), out), JsonStatus::Ok);
  EXPECT_EQ(writeJson(nestedArrays(100'000), out), JsonStatus::TooDeep);
}

TEST(ParseJsonTest, ReadsEveryKind) {
  const std::vector<std::pair<std::string, Value>> rows = {
      {"null", Null{}},
      {" [true, false] ", Array{true, false}},
      {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
      {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
      {"9223372036854775808", 9223372036854775808.0},
      {"-9223372036854775809", -9223372036854775809.0},
      {"4.0", 4.0},
      {"0.1", 0.1},
      {"[1e-999, 5e-324]", Array{0.0, 5e-324}},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"1.7976931348623157e308", 1.7976931348623157e308},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"\"a\\u0000\\ud83d\\ude00\\/\"", std::string("a\0\xF0\x9F\x98\x80/", 7)},
      {"\xEF\xBB\xBF{\"bom\": 1}", Dictionary{{"bom", 1}}},
      {"{\"a\":{\"b\":[{\"c\":[]}]}, \"\":\"\"}",
       Dictionary{{"a", Dictionary{{"b", Array{Dictionary{{"c", Array{}}}}}}}, {"", ""}}}};
  for (const auto& [text, value] : rows) {
    const std::optional<Value> parsed = parseJson(text);
    EXPECT_TRUE(parsed && *parsed == value) << text;
  }
}

TEST(ParseJsonTest, LastOfEqualKeysWinsAtTheFirstPlace) {
  const std::optional<Value> parsed = parseJson(R"({"a":1,"b":2,"a":3})");
  ASSERT_TRUE(parsed);
  EXPECT_EQ(written(*parsed), R"({"a":3,"b":2})");
}

TEST(ParseJsonTest, RefusesMalformedText) {
  using namespace std::string_literals;
  const std::vector<std::string> rows = {"",
                                         " ",
                                         "{",
                                         "[1,]",
                                         "{\"a\":1,}",
                                         "{a:1}",
                                         "01",
                                         "+1",
                                         "1.",
                                         "NaN",
                                         "Infinity",
                                         "1e999",
                                         "-1e+999",
                                         "nul",
                                         "'a'",
                                         "\"\t\"",
                                         "\"\\x\"",
                                         "[1] 2",
                                         "// c\n1",
                                         "\"\xFF\"",
                                         "\"\xC0\x80\"",
                                         "\"\xED\xA0\x80\"",
                                         "[1]\0"s,
                                         "\0[1]"s,
                                         "\"a\0b\""s,
                                         "\"\\ud800\"",
                                         "\"\\u-123\"",
                                         "\"\\u12\"",
                                         "\"\\ud800\\u\"",
                                         "-",
                                         "-a",
                                         "1e",
                                         "1e+",
                                         ".5",
                                         "[1 2]",
                                         "{\"a\" 1}",
                                         "\"a",
                                         "\"\\udc00\"",
                                         "\"\\ud800\\u0041\"",
                                         "{\"\\udc00\":1}",
                                         "[1}"};
  for (const std::string& text : rows) {
    EXPECT_FALSE(parseJson(text)) << text;
  }
}

TEST(ParseJsonTest, RefusesTooDeepNestingWithoutOverflow) {
  EXPECT_TRUE(parseJson(repeated("[", 512) + repeated("]", 512)));
  EXPECT_FALSE(parseJson(repeated("[", 513) + repeated("]", 513)));
  EXPECT_FALSE(parseJson(repeated("{\"a\":[", 1'000'000)));
}

TEST(ParseJsonTest, RefusesMoreValuesThanMemoryIsGoodFor) {
  EXPECT_TRUE(parseJson("[0" + repeated(",0", 199'998) + "]"));
  EXPECT_FALSE(parseJson("[0" + repeated(",0", 199'999) + "]"));
  EXPECT_FALSE(parseJson("[[]" + repeated(",{\"a\":[]}", 100'000) + "]"));
}

bool allTextsAreValid(const Value& value) {
  std::string out;
  return writeJson(value, out) == JsonStatus::Ok;
}

TEST(ParseJsonTest, GivesAValidValueOrNothingForGarbage) {
  const std::string text =
      R"({"text":"\u00e4\ud83d\ude00 € \"q\"","n":[1,-2.5e3,123456789012345678901],"d":{"t":true,"f":false,"z":null}})";
  ASSERT_TRUE(parseJson(text));
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_FALSE(parseJson(std::string_view(text).substr(0, length))) << length;
  }
  testing::forEachMutation(text, [](const std::string& damaged) {
    const std::optional<Value> parsed = parseJson(damaged);
    EXPECT_TRUE(!parsed || allTextsAreValid(*parsed)) << damaged;
  });
}

}  // namespace
}  // namespace kesu
