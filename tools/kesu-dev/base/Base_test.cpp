#include <gtest/gtest.h>

#include "tools/kesu-dev/base/Fields.h"
#include "tools/kesu-dev/base/TablePrinter.h"
#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

TEST(Text, MakesAnyBytesPrintable) {
  const struct {
    std::string_view bytes;
    std::string_view text;
  } rows[] = {
      {"plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80", "plain \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"a\x1b[31m", "a\\u001b[31m"},
      {"two\nlines\tand", "two\\nlines\\tand"},
      {"\xC2\x9B", "\\u009b"},
      {"\xE2\x80\xAE", "\\u202e"},
      {"\xC3", "\xEF\xBF\xBD"},
      {"\xC0\xAFx", "\xEF\xBF\xBD\xEF\xBF\xBDx"},
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"\xF4\x90\x80\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(printable(row.bytes), row.text);
  }
}

TEST(Text, ShortensByCodePoints) {
  EXPECT_EQ(shortened("\xC3\xA4\xC3\xB6\xC3\xBC", 3), "\xC3\xA4\xC3\xB6\xC3\xBC");
  EXPECT_EQ(shortened("\xC3\xA4\xC3\xB6\xC3\xBC!", 3), "\xC3\xA4\xC3\xB6\xE2\x80\xA6");
}

TEST(Text, ReadsDecimalNumbersOnly) {
  EXPECT_EQ(parseDecimal("0042"), 42);
  for (const char* text : {"", "-1", "+1", "1 ", "0x1", "9223372036854775808"}) {
    EXPECT_EQ(parseDecimal(text), std::nullopt) << text;
  }
}

TEST(Text, WritesInstantsInUtc) {
  EXPECT_EQ(utcText(1489579200007), "2017-03-15T12:00:00.007Z");
}

TEST(TablePrinter, WrapsTheLastColumnUnderItself) {
  TablePrinter table({"#", "what"}, 30);
  table.addRow({"1", "a few words that need two lines"});
  table.addRow({"22", "one\ntwo"});
  EXPECT_EQ(table.text(),
            "#   what\n"
            "------------------------------\n"
            "1   a few words that need two\n"
            "    lines\n"
            "22  one\n"
            "    two\n");
}

TEST(TablePrinter, CutsWordsLongerThanALine) {
  EXPECT_EQ(wrapped("abcdefgh ij", 4), (std::vector<std::string>{"abcd", "efgh", "ij"}));
  EXPECT_EQ(wrapped("", 4), std::vector<std::string>{""});
}

TEST(Text, PadsByCodePoints) {
  EXPECT_EQ(padded("\xC3\xA4", 3), "\xC3\xA4  ");
  EXPECT_EQ(padded("abcd", 3), "abcd");
}

TEST(Fields, CountAsEmptyWhenMissing) {
  std::string problem;
  const Dictionary fields = parseObject(R"({"text":"a","number":7,"list":["b",1]})", problem).value_or(Dictionary());
  EXPECT_EQ(textIn(fields, "text") + textIn(fields, "number") + textIn(fields, "none"), "a");
  EXPECT_EQ(numberIn(fields, "number") + numberIn(fields, "none"), 7);
  EXPECT_EQ(textsOf(listIn(fields, "list")), (std::vector<std::string>{"b", ""}));
  EXPECT_TRUE(listIn(fields, "text").empty());
}

}  // namespace
}  // namespace kesu::dev
