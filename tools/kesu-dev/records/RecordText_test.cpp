#include "tools/kesu-dev/records/RecordText.h"

#include <gtest/gtest.h>

#include "testing/TestRecord.h"
#include "tools/kesu-dev/base/Fields.h"

namespace kesu::dev {
namespace {

TEST(RecordText, NamesRecordsInWords) {
  const struct {
    const char* destination;
    Dictionary body;
    const char* name;
  } rows[] = {
      {"e", {{"~e", "LevelStarted"}}, "LevelStarted"},
      {"s", {{"~ns", "l"}, {"~ld", "Foreground Inactive"}}, "launch: Foreground Inactive"},
      {"s", {{"~ns", "b"}}, "background"},
      {"s", {{"~ns", "?"}}, "state ?"},
      {"t", {{"~ft", "1"}, {"lan", "de"}}, "full traits"},
      {"t", {{"~a:LR3", "1"}, {"~h", "2017-3-15-12"}}, "activation, period"},
      {"i", {}, "installation"},
      {"n", {{"action", "cta"}}, "cta"},
      {"e", {}, ""},
  };
  for (const auto& row : rows) {
    StoredRecord record;
    record.destination = row.destination;
    EXPECT_EQ(recordName(record, row.body), row.name);
  }
}

TEST(RecordText, LineShowsTheMarks) {
  StoredRecord record = testStored("e");
  record.id = 12;
  record.duplicateOf = 3;
  record.wasStored = true;
  const std::string line = recordLine(record, false);
  EXPECT_EQ(line.substr(line.find('#')),
            "#12    e events     LevelStarted                  world=ice  [duplicate of #3; was stored]");
  record.reasons = {"so \x1b[2J"};
  EXPECT_NE(recordLine(record, true).find("\x1b[31mBAD: so \\u001b[2J;"), std::string::npos);
}

TEST(RecordText, TableFoldsCommonColumns) {
  StoredRecord first = testStored("e", "AbCdEfGhIjKlMnOpQrSt01");
  StoredRecord second = testStored("s", "AbCdEfGhIjKlMnOpQrSt02");
  Dictionary changed = testBody("s");
  changed.set("av", "1.5");
  changed.set("umem", 17);
  second.body = jsonText(changed);
  const std::string table = recordTable({first, second}, 100);
  EXPECT_NE(table.find("kak=\"demo key\"  ~v=10-i-3.2.3"), std::string::npos) << table;
  EXPECT_NE(table.find("av: 2 values"), std::string::npos) << table;
  EXPECT_NE(table.find("launch: Foreground Inactive  umem=17\n"), std::string::npos) << table;
  EXPECT_EQ(table.find("msg_id"), std::string::npos) << table;
}

TEST(RecordText, HintsAtKeysThatTheCatalogueLacks) {
  StoredRecord record = testStored("e", "AbCdEfGhIjKlMnOpQrSt01");
  Dictionary body = testBody("e");
  body.set("~e", "GamingLevelStart");
  body.set("level", "3");
  body.set("levle", "3");
  record.body = jsonText(body);
  const std::string table = recordTable({record}, 120);
  EXPECT_NE(table.find("hint: \"levle\" is no key of the catalogue's GamingLevelStart"), std::string::npos) << table;
  EXPECT_EQ(table.find("\"level\""), std::string::npos) << table;
  EXPECT_TRUE(record.good());
}

TEST(RecordText, TableEscapesBadBodies) {
  StoredRecord record;
  record.body = "\x1b]0;x\x07 no JSON";
  record.reasons = {"the body is not valid JSON"};
  const std::string table = recordTable({record}, 100);
  EXPECT_NE(table.find("! BAD: the body is not valid JSON"), std::string::npos) << table;
  EXPECT_NE(table.find("\\u001b]0;x\\u0007 no JSON"), std::string::npos) << table;
}

TEST(RecordText, SummaryAddsUp) {
  CountsByDestination counts;
  counts["e"] = {3, 1, 1, 0};
  counts[""] = {0, 2, 0, 0};
  const std::string table = summaryTable(counts, 100);
  EXPECT_NE(table.find("all  6        3     3    1           0"), std::string::npos) << table;
  EXPECT_NE(table.find("-    2        0     2    0           0           requests that are no records"),
            std::string::npos)
      << table;
}

}  // namespace
}  // namespace kesu::dev
