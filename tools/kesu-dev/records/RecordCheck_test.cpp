#include "tools/kesu-dev/records/RecordCheck.h"

#include <gtest/gtest.h>

#include "testing/TestRecord.h"
#include "tools/kesu-dev/records/KeyTable.h"

namespace kesu::dev {
namespace {

CheckResult check(std::string_view destination, const std::string& body) {
  return checkRecord({destination, kTestVersion, "application/json", body});
}

std::string reasonsOf(const CheckResult& result) {
  std::string all;
  for (const std::string& reason : result.reasons) {
    all += reason + "\n";
  }
  return all;
}

TEST(RecordCheck, AcceptsARecordOfEveryDestination) {
  for (const Dictionary& destination : objectsOf(listIn(describeKeys(), "destinations"))) {
    const std::string code = textIn(destination, "code");
    EXPECT_EQ(reasonsOf(check(code, testRecord(code))), "") << code;
  }
}

TEST(RecordCheck, AcceptsAReceiptWithoutCommonColumns) {
  const std::string receipt =
      R"({"mid":"1","cid":"2","kak":"k","kaid":"i","action":"delivered","ase":"1489579200100"})";
  EXPECT_EQ(reasonsOf(check("n", receipt)), "");
}

TEST(RecordCheck, AcceptsAnApplicationWithoutVersions) {
  Dictionary body = testBody("e");
  body.remove("rv");
  body.remove("av");
  EXPECT_EQ(reasonsOf(check("e", jsonText(body))), "");
}

TEST(RecordCheck, ReportsBadHeaders) {
  const struct {
    const char* destination;
    const char* version;
    const char* contentType;
    const char* reason;
  } rows[] = {
      {"", kTestVersion, "application/json", "header t (destination) is missing\n"},
      {"UnknownDestination", kTestVersion, "application/json", "without a destination"},
      {"events", kTestVersion, "application/json", "unknown destination \"events\""},
      {"e", "", "application/json", "header v (version) is missing"},
      {"e", "3.2.3", "application/json", "does not look like"},
      {"e", "x-i-3.2.3", "application/json", "does not look like"},
      {"e", "10--3.2.3", "application/json", "does not look like"},
      {"e", "10-i-", "application/json", "does not look like"},
      {"e", "10-i-3.2.4", "application/json", "\"~v\" \"10-i-3.2.3\" differs from header v \"10-i-3.2.4\"\n"},
      {"e", kTestVersion, "", "Content-Type is \"\""},
      {"e", kTestVersion, "text/plain", "Content-Type is \"text/plain\""},
      {"e", kTestVersion, "Application/JSON ; charset=utf-8", ""},
  };
  for (const auto& row : rows) {
    const std::string body = testRecord("e");
    const std::string found = reasonsOf(checkRecord({row.destination, row.version, row.contentType, body}));
    EXPECT_NE(found.find(row.reason), std::string::npos) << row.reason << " in: " << found;
    EXPECT_EQ(found.empty(), *row.reason == '\0') << found;
  }
}

TEST(RecordCheck, ReportsBadKeys) {
  const struct {
    const char* destination;
    const char* key;
    Object value;  // nil = removed
    const char* reason;
  } rows[] = {
      {"e", "kak", nil, "\"kak\" (application key given to initialize) is missing\n"},
      {"e", "kaid", nil, "\"kaid\" (identifier of this installation) is missing\n"},
      {"s", "ldt", nil, "\"ldt\" (date and time on the device when the record was made) is missing\n"},
      {"u", "ov", nil, "\"ov\" (version of the operating system) is missing\n"},
      {"n", "ase", nil, "\"ase\" (when the record was sent, ms since 1970) is missing\n"},
      {"e", "~e", nil, "\"~e\" (name of the event) is missing\n"},
      {"e", "~e", "", "\"~e\" is empty\n"},
      {"e", "kak", 7, "\"kak\" is not a text\n"},
      {"e", "ov", Null{}, "\"ov\" is not a text\n"},
      {"e", "ase", std::int64_t{1489579200100}, "\"ase\" is not a text\n"},
      {"e", "ase", "", "\"ase\" \"\" is not a decimal number of milliseconds\n"},
      {"e", "ace", "1.5e12", "\"ace\" \"1.5e12\" is not a decimal number of milliseconds\n"},
      {"e", "ace", "99999999999999999999", "is not a decimal number of milliseconds\n"},
      {"e", "msg_id", "tooshort", "\"msg_id\" \"tooshort\" is not 22 characters of base64\n"},
      {"e", "msg_id", "AbCdEfGhIjKlMnOpQrSt0=", "is not 22 characters of base64\n"},
      {"e", "prd", "box", "\"prd\" does not belong to destination \"e\"\n"},
      {"t", "prd", nil, "\"prd\" (device product) is missing\n"},
      {"e", "dest", "e", "\"dest\" is for the sender only and must not be sent\n"},
      {"e", "fnk", "1.plist", "\"fnk\" is for the sender only and must not be sent\n"},
  };
  for (const auto& row : rows) {
    Dictionary body = testBody(row.destination);
    body.remove(row.key);
    if (row.value) {
      body.set(row.key, *row.value);
    }
    const CheckResult result = check(row.destination, jsonText(body));
    EXPECT_EQ(result.reasons.size(), 1U) << row.key << ": " << reasonsOf(result);
    EXPECT_NE(reasonsOf(result).find(row.reason), std::string::npos) << row.reason << " in: " << reasonsOf(result);
  }
}

TEST(RecordCheck, RefusesBodiesThatAreNoObject) {
  EXPECT_EQ(reasonsOf(check("e", "")), "the body is not valid JSON\n");
  EXPECT_EQ(reasonsOf(check("e", "{\"a\":")), "the body is not valid JSON\n");
  EXPECT_EQ(reasonsOf(check("e", "[{}]")), "the body is JSON but not an object\n");
  EXPECT_FALSE(check("e", "[{}]").isObject);
}

TEST(RecordCheck, KeepsTheMessageIdOfABadRecord) {
  const CheckResult result = check("", testRecord("e", "AbCdEfGhIjKlMnOpQrSt99"));
  EXPECT_FALSE(result.reasons.empty());
  EXPECT_EQ(result.messageId, "AbCdEfGhIjKlMnOpQrSt99");
}

TEST(RecordCheck, RecognisesStoredRecordsByTheirAge) {
  const struct {
    const char* made;
    const char* sent;
    const char* interrupted;
    bool stored;
  } rows[] = {
      {"1489579200000", "1489579202000", "", false},
      {"1489579200000", "1489579202001", "", true},
      {"1489579202001", "1489579200000", "", false},
      {"1489579200000", "1489579902001", "1489579200000", false},
  };
  for (const auto& row : rows) {
    Dictionary body = testBody("s");
    body.set("ace", row.made);
    body.set("ase", row.sent);
    body.set("~cfqt", row.interrupted);
    EXPECT_EQ(check("s", jsonText(body)).wasStored, row.stored) << row.sent;
  }
}

TEST(KeyTable, ExplainsEveryKeyOnce) {
  for (const KeyInfo& key : allKeys()) {
    EXPECT_EQ(findKey(key.key), &key) << key.key << " stands twice";
    EXPECT_FALSE(key.meaning.empty()) << key.key;
  }
  EXPECT_EQ(findKey("nobody"), nullptr);
}

}  // namespace
}  // namespace kesu::dev
