#include "foundation/PropertyList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "testing/MutatedReplies.h"
#include "testing/NestedValues.h"

namespace kesu {
namespace {

using testing::nestedArrays;
using testing::repeated;

std::string document(std::string_view content, std::string_view head = "") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + std::string(head) + "<plist version=\"1.0\">" +
         std::string(content) + "</plist>";
}

std::optional<Value> parseContent(std::string_view content) {
  return parsePropertyList(document(content));
}

Value everyKind() {
  return Value(Dictionary{{"text", "a & b < c > d \"e\" \xC3\xA4"},
                          {"flag", true},
                          {"array", Array{1, 2.5, Array{}, Dictionary{}, false}},
                          {"date", Date{1489579320}},
                          {"data", Data{0, 1, 254, 255}},
                          {"in", Dictionary{{"key & <more>", ""}}}});
}

TEST(PropertyListTest, WritesTheUsualForm) {
  const Dictionary record{{"t", "a<b"}, {"list", Array{1, 4.0, true, Date{1489579320.9}, Data{1, 2}, Dictionary{}}}};
  const std::string expected =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
      "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
      "<plist version=\"1.0\">\n<dict>\n\t<key>t</key>\n\t<string>a&lt;b</string>\n\t<key>list</key>\n\t<array>\n"
      "\t\t<integer>1</integer>\n\t\t<real>4</real>\n\t\t<true/>\n\t\t<date>2017-03-15T12:02:00Z</date>\n"
      "\t\t<data>AQI=</data>\n\t\t<dict/>\n\t</array>\n</dict>\n</plist>\n";
  EXPECT_EQ(writePropertyList(record), expected);
  EXPECT_EQ(writePropertyList(Value(record)), expected);
  const std::string infinities = writePropertyList(Array{HUGE_VAL, -HUGE_VAL, "\r"}).value();
  EXPECT_NE(infinities.find("<real>+infinity</real>\n\t<real>-infinity</real>\n\t<string>&#13;<"), std::string::npos);
}

TEST(PropertyListTest, RoundTripsEveryValue) {
  const std::vector<Value> values = {everyKind(),
                                     "",
                                     " ",
                                     "\t\n ",
                                     " a ",
                                     "\r",
                                     "\r\n",
                                     "a\r\nb\n",
                                     "\n\n",
                                     "]]>",
                                     "&amp;",
                                     "&#13;",
                                     "<!-- no comment -->",
                                     "\x7f",
                                     "\xC2\x85\xE2\x80\xA8",
                                     "\xF0\x9F\x98\x80",
                                     "\xEF\xBB\xBF",
                                     std::string(1u << 20, 'x'),
                                     std::string(1u << 20, '\r'),
                                     std::numeric_limits<std::int64_t>::min(),
                                     std::numeric_limits<std::int64_t>::max(),
                                     0.1,
                                     -0.0,
                                     1e30,
                                     5e-324,
                                     std::numeric_limits<double>::max(),
                                     HUGE_VAL,
                                     -HUGE_VAL,
                                     4.0,
                                     Date{0},
                                     Date{-1},
                                     Date{-62135596800},
                                     Date{64092211200},
                                     Date{1456704000},
                                     Data{},
                                     Data(100'001, 0xA5),
                                     Array{},
                                     Array{" ", Array{Value(Array{})}},
                                     Dictionary{{"", " "}, {" ", ""}, {"\r\n", Dictionary{}}}};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::optional<std::string> text = writePropertyList(values[i]);
    ASSERT_TRUE(text) << i;
    const std::optional<Value> parsed = parsePropertyList(*text);
    EXPECT_TRUE(parsed && *parsed == values[i]) << "value " << i;
  }
  const std::optional<Value> notANumber = parsePropertyList(writePropertyList(std::nan("")).value());
  EXPECT_TRUE(notANumber && notANumber->real() && std::isnan(*notANumber->real()));
}

TEST(PropertyListTest, WritesNothingWhenAnythingWouldBeLost) {
  const std::vector<Value> values = {Null{},
                                     "\x01",
                                     std::string("a\0b", 3),
                                     "\x1b[0m",
                                     "\x0b",
                                     "\xFF",
                                     "\xED\xA0\x80",
                                     "\xC0\x80",
                                     "\xEF\xBF\xBE",
                                     "\xEF\xBF\xBF",
                                     Date{1e12},
                                     Date{std::nan("")},
                                     Dictionary{{"\x02", 1}},
                                     nestedArrays(511)};
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_FALSE(writePropertyList(Dictionary{{"a", 1}, {"in", Array{values[i]}}, {"z", 1}})) << "value " << i;
  }
  EXPECT_FALSE(writePropertyList(nestedArrays(100'000)));
  EXPECT_TRUE(writePropertyList(nestedArrays(512)));
}

constexpr const char* kIntroducer = "\xEE\x80\x9B";

// Every character that needs an escape, beside some that look like one.
std::vector<std::string> awkwardTexts() {
  const std::string introducer = kIntroducer;
  std::vector<std::string> texts = {"\xEF\xBF\xBE",
                                    "\xEF\xBF\xBF",
                                    introducer + '\x01',
                                    introducer + introducer + "0001" + '\0',
                                    introducer + "@1\x02",
                                    '\x1b' + introducer + "e01b",
                                    "a\r\n\t<&>\x7f\x0b\xC3\xA4\xF0\x9F\x98\x80\xEF\xBF\xBF]]>\x0c",
                                    "<!-- \x08 -->"};
  for (char control = 0; control < 0x20; ++control) {
    if (control != '\t' && control != '\n' && control != '\r') {
      texts.emplace_back(1, control);
      texts.push_back(std::string("a") + control + "b" + control);
    }
  }
  return texts;
}

TEST(PropertyListTest, EscapedFormKeepsWhatXmlCannotRepresent) {
  std::vector<Value> values = {Date{1e12}, Date{-1e300}, Date{253402300800.25}, Date{HUGE_VAL}};
  Dictionary keys;
  for (const std::string& text : awkwardTexts()) {
    values.emplace_back(text);
    keys.set(text, text);
  }
  values.emplace_back(Dictionary{{"in", Array{Value(Array{"plain", keys, Date{1e12}})}}, {kIntroducer, "@1"}});
  values.emplace_back(Array(values));
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_FALSE(writePropertyList(values[i])) << "value " << i;
    const auto list = writePropertyList(values[i], PropertyListForm::Escaped);
    ASSERT_TRUE(list) << "value " << i;
    EXPECT_EQ(parsePropertyList(*list, PropertyListForm::Escaped), values[i]) << *list;
    EXPECT_TRUE(parsePropertyList(*list)) << "any parser can read it: " << *list;
  }
  const auto notANumber = writePropertyList(Date{std::nan("")}, PropertyListForm::Escaped);
  const auto parsed = parsePropertyList(notANumber.value(), PropertyListForm::Escaped);
  EXPECT_TRUE(parsed && parsed->date() && std::isnan(parsed->date()->secondsSince1970));
}

TEST(PropertyListTest, EscapedFormChangesNothingElse) {
  const std::string introducer = kIntroducer;
  for (const std::string& text : {introducer, introducer + "0001", introducer + "e01b", introducer + "@1"}) {
    const Value value(Dictionary{{text, text}, {"all", everyKind()}});
    const auto list = writePropertyList(value);
    ASSERT_TRUE(list);
    EXPECT_EQ(writePropertyList(value, PropertyListForm::Escaped), list);
    EXPECT_EQ(parsePropertyList(*list, PropertyListForm::Escaped), value) << "files without the mark read as before";
  }
  const std::string marked = writePropertyList("a\x01", PropertyListForm::Escaped).value();
  EXPECT_EQ(parsePropertyList(marked), Value("a" + introducer + "0001")) << "a foreign list is read as it stands";
  for (const Value& value : {Value(Null{}), Value("\xFF\x01"), Value("\xED\xA0\x80"), nestedArrays(100'000)}) {
    EXPECT_FALSE(writePropertyList(value, PropertyListForm::Escaped));
  }
}

TEST(PropertyListTest, EscapedFormRefusesMalformedEscapes) {
  const std::string marked = writePropertyList(Array{"\x01"}, PropertyListForm::Escaped).value();
  const std::size_t digits = marked.find("0001");
  for (const char* bad : {"", "0", "000", "000x", "0041", "d800", "-001", "@", "@1x", "@ 1", "+001", "0009", "  01"}) {
    EXPECT_FALSE(parsePropertyList(std::string(marked).replace(digits, 4, bad), PropertyListForm::Escaped)) << bad;
  }
  EXPECT_EQ(parsePropertyList(std::string(marked).replace(digits, 4, "@-5"), PropertyListForm::Escaped),
            Value(Array{Date{-5}}));
}

TEST(PropertyListTest, OtherParsersReadEscapedLists) {
  FILE* parser = ::popen(
      "command -v python3 >/dev/null || { cat >/dev/null; exit 77; }; "
      "exec python3 -c 'import plistlib, sys; p = plistlib.loads(sys.stdin.buffer.read()); "
      "sys.exit(p != {\"a\": [\"\\ue01b0000\", 1], \"\\ue01bffff\": \"\\ue01b@1e+20\"})'",
      "w");
  ASSERT_NE(parser, nullptr);
  const Dictionary record{{"a", Array{std::string(1, '\0'), 1}}, {"\xEF\xBF\xBF", Date{1e20}}};
  std::fputs(writePropertyList(record, PropertyListForm::Escaped).value().c_str(), parser);
  const int status = ::pclose(parser);
  if (status == 77 << 8) {
    GTEST_SKIP() << "python3 is missing";
  }
  EXPECT_EQ(status, 0);
}

TEST(PropertyListTest, ReadsWhatOtherProgramsWrite) {
  const std::vector<std::pair<std::string, Value>> rows = {
      {"<string>a<![CDATA[<&]]>b<!-- c -->d</string>", "a<&bd"},
      {"<string>&#65;&#x42;&quot;&apos;</string>", "AB\"'"},
      {"<!-- c --><dict><!-- c -->\n<key>k</key> <true></true></dict>", Dictionary{{"k", true}}},
      {"<dict><key>a</key><integer>1</integer><key>a</key><integer>2</integer></dict>", Dictionary{{"a", 2}}},
      {"<string>a\r\nb\rc</string>", "a\r\nb\rc"},
      {"<integer> +5\n</integer>", 5},
      {"<integer>18446744073709551615</integer>", 18446744073709551615.0},
      {"<real>+infinity</real>", HUGE_VAL},
      {"<real>infinity</real>", HUGE_VAL},
      {"<real>+1.50</real>", 1.5},
      {"<real>\n-2E3 </real>", -2000.0},
      {"<data>\n\tAQID\n\tBAUG\n</data>", Data{1, 2, 3, 4, 5, 6}},
      {"<date> 2000-02-29T23:59:59Z </date>", Date{951868799}},
      {"<array/>", Array{}}};
  for (const auto& [content, value] : rows) {
    const std::optional<Value> parsed = parseContent(content);
    EXPECT_TRUE(parsed && *parsed == value) << content;
  }
  EXPECT_TRUE(parsePropertyList("<plist><dict/></plist>"));
  EXPECT_TRUE(parsePropertyList("\xEF\xBB\xBF<?xml version=\"1.0\"?><plist><dict/></plist>\n"));
}

TEST(PropertyListTest, RefusesMalformedContent) {
  const std::vector<std::string> rows = {"",
                                         "text",
                                         "<dict/><dict/>",
                                         "<dict/>x",
                                         "x<dict/>",
                                         "<unknown/>",
                                         "<null/>",
                                         "<string><b/></string>",
                                         "<array>x</array>",
                                         "<array><true/>x</array>",
                                         "<dict>x<key>a</key><true/></dict>",
                                         "<dict><key>a</key></dict>",
                                         "<dict><true/></dict>",
                                         "<dict><string>a</string><true/></dict>",
                                         "<dict><key>a</key><key>b</key></dict>",
                                         "<integer/>",
                                         "<integer>1.5</integer>",
                                         "<integer>1 2</integer>",
                                         "<integer>+-1</integer>",
                                         "<real/>",
                                         "<real>1,5</real>",
                                         "<real>1x</real>",
                                         "<real>+-1</real>",
                                         "<real>1e999</real>",
                                         "<true>x</true>",
                                         "<date>2017-03-15</date>",
                                         "<date>2017-02-29T00:00:00Z</date>",
                                         "<date>2017-03-15T24:00:00Z</date>",
                                         "<date>2017-03-15T12:0x:00Z</date>",
                                         "<data>AQI*</data>",
                                         "<string>\xFF</string>",
                                         "<string>&#xD800;</string>",
                                         std::string("<string>a\0b</string>", 20),
                                         "<string>a</strin>",
                                         "<array><string></array>"};
  for (const std::string& content : rows) {
    EXPECT_FALSE(parseContent(content)) << content;
  }
  for (const char* text : {"", " ", "<dict/>", "<plist/>", "<plist><dict/></plist><plist><dict/></plist>",
                           "bplist00\xD0\x08", "<plist><dict/>"}) {
    EXPECT_FALSE(parsePropertyList(text)) << text;
  }
  EXPECT_FALSE(parsePropertyList(document("<true/>") + std::string("\0<b/>", 5)));
}

TEST(PropertyListTest, RefusesDeclaredEntities) {
  const std::string laughs =
      "<!DOCTYPE plist [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;\">]>\n";
  EXPECT_FALSE(parsePropertyList(document("<string>&c;</string>", laughs)));
  EXPECT_FALSE(parsePropertyList(document("<string>a</string>", "<!DOCTYPE plist SYSTEM \"x\" [ ]>")));
  EXPECT_TRUE(parsePropertyList(document("<string>a</string>", "<!DOCTYPE plist SYSTEM \"file:///etc/passwd\">")));
}

TEST(PropertyListTest, RefusesTooMuchWithoutOverflow) {
  const auto arrays = [](std::size_t levels) { return repeated("<array>", levels) + repeated("</array>", levels); };
  EXPECT_TRUE(parseContent(arrays(512)));
  EXPECT_FALSE(parseContent(arrays(513)));
  EXPECT_FALSE(parseContent(arrays(100'000)));
  EXPECT_FALSE(parseContent(repeated("<dict><key>a</key>", 100'000)));
  EXPECT_FALSE(parseContent("<string>" + std::string(kPropertyListSizeLimitBytes, 'x') + "</string>"));
}

TEST(PropertyListTest, GivesAValueOrNothingForGarbage) {
  const std::string text = writePropertyList(everyKind()).value();
  const std::size_t end = text.find("</plist>") + 8;
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_EQ(parsePropertyList(std::string_view(text).substr(0, length)).has_value(), length >= end) << length;
  }
  testing::forEachMutation(text, [](const std::string& damaged) {
    // What could be read can be read again after writing, unless it holds what XML cannot carry.
    const std::optional<Value> parsed = parsePropertyList(damaged);
    const std::optional<std::string> again = parsed ? writePropertyList(*parsed) : std::nullopt;
    EXPECT_TRUE(!again || parsePropertyList(*again) == parsed) << damaged;
  });
}

}  // namespace
}  // namespace kesu
