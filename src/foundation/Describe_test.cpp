#include "foundation/Describe.h"

#include <gtest/gtest.h>

#include <cmath>

#include "testing/NestedValues.h"

namespace kesu {
namespace {

TEST(DescribeTest, DescribesEveryKind) {
  const std::vector<std::pair<Value, std::string>> rows = {
      {Null{}, "<null>"},
      {true, "1"},
      {false, "0"},
      {-42, "-42"},
      {4.0, "4"},
      {2.5, "2.5"},
      {"two words", "two words"},
      {Date{1489579320.75}, "2017-03-15 12:02:00 +0000"},
      {Date{-0.5}, "1969-12-31 23:59:59 +0000"},
      {Date{253402300799.0}, "9999-12-31 23:59:59 +0000"},
      {Date{253402300800.0}, "<date>"},
      {Date{std::nan("")}, "<date>"},
      {Data{}, "<>"},
      {Data{1, 2, 3, 4}, "<01020304>"},
      {Data{1, 2, 3, 4, 5, 6}, "<01020304 0506>"},
      {Array{}, "(\n)"},
      {Dictionary{}, "{\n}"},
      {Array{"a", "two words", "", "a\"b", 1}, "(\n    a,\n    \"two words\",\n    \"\",\n    \"a\\\"b\",\n    1\n)"},
      {Dictionary{{"key", Array{1}}, {"a key", Null{}}},
       "{\n    key = (\n        1\n    );\n    \"a key\" = <null>;\n}"}};
  for (const auto& [value, text] : rows) {
    EXPECT_EQ(describe(value), text);
  }
  EXPECT_EQ(describe(Dictionary{{"k", 1}}), "{\n    k = 1;\n}");
}

TEST(DescribeTest, CutsDeepNestingShort) {
  const std::string text = describe(testing::nestedArrays(100'000));
  EXPECT_NE(text.find("..."), std::string::npos);
  EXPECT_LT(text.size(), 64u * 1024u);
}

}  // namespace
}  // namespace kesu
