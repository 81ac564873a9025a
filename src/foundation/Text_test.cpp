#include "foundation/Text.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

std::string utf8(char32_t point) {
  if (point < 0x80) {
    return {static_cast<char>(point)};
  }
  if (point < 0x800) {
    return {static_cast<char>(0xC0 | point >> 6), static_cast<char>(0x80 | (point & 63))};
  }
  return {static_cast<char>(0xE0 | point >> 12), static_cast<char>(0x80 | (point >> 6 & 63)),
          static_cast<char>(0x80 | (point & 63))};
}

bool isListedSpace(char32_t point) {
  return (point >= 0x09 && point <= 0x0D) || point == 0x20 || point == 0x85 || point == 0xA0 || point == 0x1680 ||
         (point >= 0x2000 && point <= 0x200B) || point == 0x2028 || point == 0x2029 || point == 0x202F ||
         point == 0x205F || point == 0x3000;
}

TEST(TextTest, CallsBlankExactlyTheListedCharacters) {
  for (char32_t point = 0; point < 0x3100; ++point) {
    const std::string character = utf8(point);
    EXPECT_EQ(isBlank(character + " " + character), isListedSpace(point)) << std::hex << +point;
    EXPECT_FALSE(isBlank(character + "a" + character)) << std::hex << +point;
  }
  EXPECT_FALSE(isBlank("\xE2\x80 "));
  EXPECT_FALSE(isBlank(" \xFF"));
  EXPECT_TRUE(isBlank(""));
}

TEST(TextTest, CountsUtf16UnitsAndCutsThatManyBytes) {
  struct Row {
    std::string text;
    std::size_t units;
    std::string prefix;
  };
  const std::vector<Row> rows = {{"", 0, ""},
                                 {"abc", 3, "abc"},
                                 {"\xC3\xA4", 1, "\xC3"},
                                 {"a\xE2\x82\xAC", 2, "a\xE2"},
                                 {"\xF0\x9F\x98\x80", 2, "\xF0\x9F"},
                                 {"\xF0\x9F\x98", 3, "\xF0\x9F\x98"},
                                 {"\xFF\xC3", 2, "\xFF\xC3"}};
  for (const Row& row : rows) {
    EXPECT_EQ(utf8PrefixOfUtf16Length(row.text).size(), row.units) << row.text;
    EXPECT_EQ(utf8PrefixOfUtf16Length(row.text), row.prefix) << row.text;
  }
}

TEST(TextTest, TellsValidUtf8) {
  for (const char* text :
       {"", "ascii only text", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
        "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "12345678\xC3\xA4"}) {
    EXPECT_TRUE(isValidUtf8(text)) << text;
  }
  for (const char* text : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xED\xA0\x80",
                           "\xE2\x82", "\xE2\x82(", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF",
                           "1234567\xFF", "12345678\xE2\x82"}) {
    EXPECT_FALSE(isValidUtf8(text)) << text;
  }
}

TEST(TextTest, TakesPathsApart) {
  struct Row {
    std::string_view path;
    std::string_view last;
    std::string_view extension;
  };
  const std::vector<Row> rows = {{"", "", ""},
                                 {"/", "/", ""},
                                 {"//", "/", ""},
                                 {"/tmp/a.txt", "a.txt", "txt"},
                                 {"a.b.c", "a.b.c", "c"},
                                 {"/tmp.d/file", "file", ""},
                                 {"/tmp/.hidden", ".hidden", ""},
                                 {"/tmp/.hidden.txt", ".hidden.txt", "txt"},
                                 {"dir.x//", "dir.x", "x"},
                                 {"name.", "name.", ""}};
  for (const Row& row : rows) {
    EXPECT_EQ(lastPathComponent(row.path), row.last) << row.path;
    EXPECT_EQ(pathExtension(row.path), row.extension) << row.path;
  }
}

TEST(TextTest, ComparesIgnoringCaseOfAsciiLetters) {
  EXPECT_TRUE(equalsIgnoringCase("TrUe", "true"));
  EXPECT_FALSE(equalsIgnoringCase("true", "true "));
  EXPECT_FALSE(equalsIgnoringCase("@[", "`{"));
  EXPECT_FALSE(equalsIgnoringCase("\xC3\x84", "\xC3\xA4"));
  EXPECT_EQ(asciiLowerCase("aZ@[\xC3\x84"), "az@[\xC3\x84");
}

}  // namespace
}  // namespace kesu
