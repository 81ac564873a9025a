// The inbox and its requester on doubles: the requests are the record of what happened in which order.
#include <gtest/gtest.h>

#include "foundation/Json.h"
#include "messaging/MessagingWiring.h"
#include "platform/OrderlyEnd.h"
#include "records/DefaultsKeys.h"
#include "support/KesuPriorityLogger.h"
#include "testing/DeliverAsTaken.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

using Type = KesuInAppMessageType;

Value json(const std::string& text) {
  return parseJson(text).value();
}

class InboxTest : public ::testing::Test {
 protected:
  InboxTest() {
    platform.bundle.dictionary = {{"KesuMessagingHost", "m.example:8443"},
                                  {"KesuOverrideServer", "https://c.example/"}};
    platform.defaults.set(kAppKeyDefault, "key");
    platform.defaults.set(kInstanceIdDefault, "id");
    platform.defaults.set(kInstanceId2Default, "id2");
    testing::deliverAsTaken(wiring.outbox, wiring.post);
    KesuPriorityLogger::sharedLogger().setLogLevel(3);
  }
  ~InboxTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// What the host's handlers were told, one text each: JSON, or "nil".
  KesuInbox::ObjectHandler listen() {
    return [this](const Object& result) { told.push_back(result ? text(*result) : "nil"); };
  }
  KesuInbox::CountHandler listenToCount() {
    return [this](std::int64_t count) { told.push_back(std::to_string(count)); };
  }
  std::vector<std::string> takeTold() { return std::exchange(told, {}); }

  /// Answers the last request.
  void answer(HttpReply reply) {
    platform.http.answer(platform.http.requestCount() - 1, std::move(reply));
    platform.settle();
  }
  void answer(const std::string& body) { answer(testing::FakeHttpClient::reply(200, body)); }

  static std::string text(const Value& value) {
    std::string out;
    writeJson(value, out);
    return out;
  }
  std::string stored(std::string_view key) {
    const Dictionary kept = platform.defaults.keptOnDisk();
    const Value* value = kept.find(key);
    return value != nullptr ? text(*value) : "none";
  }

  testing::ScopedPlatform platform;
  MessagingWiring wiring{platform.platform};
  KesuInAppMessagesRequester& requester = wiring.requester;
  KesuInbox& inbox = wiring.inbox;
  std::vector<std::string> told;
};

using Strings = std::vector<std::string>;

TEST_F(InboxTest, SendsEachQuestionToItsPath) {
  inbox.kesu_countNewUnFetched({});
  inbox.kesu_getMessageHeadersForType(Type::Unread, {});
  inbox.kesu_getMessagesForType(Type::Unread, {});
  platform.bundle.dictionary.set("devmode", "true");
  inbox.kesu_getMessageWithContentID("c", "m", {});
  platform.settle();
  const Strings expected = {"PUT https://m.example:8443/api/inapp/count/",
                            "POST https://m.example:8443/api/inapp/newUnFetched/",
                            "POST https://m.example:8443/api/inapp/getInAppMessages/",
                            "PUT https://m.example:8443/api/devmode/inapp/getmessage/", "POST https://c.example/"};
  Strings sent;
  for (const HttpRequest& request : platform.http.requests()) {
    sent.push_back(request.method + " " + request.url);
  }
  EXPECT_EQ(sent, expected);
  EXPECT_EQ(platform.http.request(0).body, R"({"kak":"key","kaid":"id","kaid2":"id2"})");
  EXPECT_EQ(platform.http.request(0).headers,
            (decltype(HttpRequest::headers){
                {"Content-Type", "application/json"}, {"Accept-Encoding", "gzip"}, {"Content-Length", "39"}}));
  EXPECT_EQ(platform.http.request(3).body, R"({"kak":"key","kaid":"id","kaid2":"id2","mid":"m","cid":"c"})");
  EXPECT_TRUE(platform.http.request(4).body.starts_with(
      R"({"mid":"m","cid":"c","kak":"key","kaid":"id","action":"delivered","ase":)"));
  EXPECT_EQ(platform.http.request(4).headers.front().second, "n");
}

TEST_F(InboxTest, LeavesMissingIdentifiersOut) {
  platform.defaults.set(kAppKeyDefault, "");
  platform.defaults.remove(kInstanceId2Default);
  inbox.kesu_countNewUnFetched({});
  EXPECT_EQ(platform.http.request(0).body, R"({"kaid":"id"})");
}

TEST_F(InboxTest, SendsNothingThatCannotBeJson) {
  platform.defaults.set(kAppKeyDefault, "\xFF");
  inbox.kesu_countNewUnFetched(listenToCount());
  EXPECT_EQ(platform.http.requestCount(), 0U);
  EXPECT_TRUE(told.empty());
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, 0);
  EXPECT_TRUE(lines[0].text.starts_with("JSON serialization exception: NSInvalidArgumentException and the reason "));
}

struct ReplyRow {
  HttpReply reply;
  Strings told;
  const char* line;
};

TEST_F(InboxTest, CallsTheHandlerAsOftenAsTheReplySays) {
  HttpReply both = testing::FakeHttpClient::reply(200, R"({"count":3})");
  both.error = HttpError::ConnectionLost;
  both.errorText = "broke";
  HttpReply bare;
  bare.status = 204;
  const ReplyRow rows[] = {
      {testing::FakeHttpClient::reply(200, R"({"count":3})"), {"3"}, ""},
      {testing::FakeHttpClient::reply(204, ""), {"0"}, ""},
      {bare, {}, ""},
      {testing::FakeHttpClient::reply(404, R"({"count":3})"), {"0"}, "Error: Status Code 404, (null) - not found"},
      {testing::FakeHttpClient::reply(302), {"0"}, "Error: Status Code 302, (null) - found"},
      {testing::FakeHttpClient::failure(HttpError::TimedOut),
       {"0"},
       "Error: Status Code 0, failed by the test - server error"},
      {both, {"0", "3"}, "Error: Status Code 200, broke - no error"},
      {testing::FakeHttpClient::reply(200, R"({"count":"12"})"), {"12"}, ""},
      {testing::FakeHttpClient::reply(200, R"({"count":null})"), {"0"}, ""},
      {testing::FakeHttpClient::reply(200, R"([3])"), {"0"}, ""},
      {testing::FakeHttpClient::reply(200, R"({)"), {"0"}, ""}};
  for (const ReplyRow& row : rows) {
    inbox.kesu_countNewUnFetched(listenToCount());
    answer(row.reply);
    EXPECT_EQ(takeTold(), row.told) << row.line;
    const auto lines = platform.log.takeLines();
    ASSERT_EQ(lines.size(), *row.line != '\0' ? 1U : 0U);
    EXPECT_TRUE(lines.empty() || (lines[0].level == 3 && lines[0].text.ends_with(row.line))) << row.line;
  }
}

TEST_F(InboxTest, AddsNewMessagesToThoseNotRead) {
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"1"},{"mid":"2","contentRead":true},{"contentRead":false},
                                                 {"contentRead":"YES"},{"contentRead":"true"},{"contentRead":0},5])"));
  for (const auto& [reply, sum] : {std::pair(R"({"count":7})", "11"),
                                   {"[]", "4"},
                                   {"{}", "4"},
                                   {"", "4"},
                                   {R"({"count":9223372036854775807})", "9223372036854775807"}}) {
    inbox.kesu_getTotalUnreadMessages(listenToCount());
    answer(reply);
    EXPECT_EQ(takeTold(), Strings{sum}) << reply;
  }
}

TEST_F(InboxTest, CountsNothingWithoutKeyOrIdentifiers) {
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"1"}])"));
  for (const std::string_view key : {kAppKeyDefault, kInstanceIdDefault, kInstanceId2Default}) {
    const Value before = platform.defaults.get(key).value();
    platform.defaults.remove(key);
    inbox.kesu_getTotalUnreadMessages(listenToCount());
    platform.defaults.set(key, "");
    if (key != kAppKeyDefault) {
      inbox.kesu_getTotalUnreadMessages(listenToCount());
    }
    platform.defaults.set(key, before);
  }
  EXPECT_EQ(takeTold(), Strings(5, "0"));
  EXPECT_EQ(platform.http.requestCount(), 0U);
  platform.defaults.set(kAppKeyDefault, "");
  inbox.kesu_getTotalUnreadMessages(listenToCount());
  answer(R"({"count":7})");
  EXPECT_EQ(takeTold(), Strings{"8"}) << "an empty key is a key";
}

TEST_F(InboxTest, KeepsHeadersAndRemembersThoseBefore) {
  inbox.kesu_getMessageHeadersForType(Type::Unread, listen());
  EXPECT_EQ(stored(kPreviousHeadersDefault), "none");
  answer(R"({"metadatalist":[{"mid":"1","cid":"a","x":null},{"mid":"2","contentRead":true},7]})");
  EXPECT_EQ(takeTold(), Strings{R"([{"mid":"1","cid":"a","x":null},{"mid":"2","contentRead":true},7])"}) << "as sent";
  EXPECT_EQ(stored(kHeadersDefault), R"([{"mid":"1","cid":"a","contentRead":false},{"mid":"2","contentRead":false}])");
  EXPECT_EQ(stored(kPreviousHeadersDefault), R"("")");
  EXPECT_EQ(inbox.kesu_previousReadMessages().value(), Value(""));

  inbox.kesu_getMessageHeadersForType(Type::All, listen());
  EXPECT_EQ(stored(kPreviousHeadersDefault), stored(kHeadersDefault)) << "before the reply";
  answer(R"({"metadatalist":[{"mid":"3"}]})");
  EXPECT_EQ(takeTold(), Strings{stored(kHeadersDefault)});
  EXPECT_TRUE(stored(kHeadersDefault).ends_with(R"(,{"mid":"3","contentRead":false}])"));
}

TEST_F(InboxTest, KeepsEarlierHeadersThatAreStored) {
  platform.defaults.set(kPreviousHeadersDefault, json(R"([{"mid":"0"}])"));
  inbox.kesu_getMessageHeadersForType(Type::Unread, {});
  answer(R"({"metadatalist":[{"mid":"1"}]})");
  EXPECT_EQ(stored(kPreviousHeadersDefault), R"([{"mid":"0"}])");
}

TEST_F(InboxTest, AnswersKnownHeadersWithoutARequest) {
  inbox.kesu_getMessageHeadersForType(Type::Read, listen());
  platform.defaults.set(kPreviousHeadersDefault, "");
  inbox.kesu_getMessageHeadersForType(Type::Read, listen());
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"1"}])"));
  inbox.kesu_getMessageHeadersForType(Type::Read, listen());
  EXPECT_EQ(takeTold(), (Strings{"nil", R"("")", R"([{"mid":"1"}])"}));
  EXPECT_EQ(stored(kPreviousHeadersDefault), R"([{"mid":"1"}])");
  EXPECT_EQ(platform.http.requestCount(), 0U);
}

TEST_F(InboxTest, AnswersHeadersByTheTypeAsked) {
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"1"}])"));
  const std::tuple<Type, const char*, const char*> rows[] = {{Type::Unread, R"({"metadatalist":[]})", "[]"},
                                                             {Type::Unread, "{}", "nil"},
                                                             {Type::Unread, "[]", "nil"},
                                                             {Type::Unread, R"({"metadatalist":"x"})", R"("x")"},
                                                             {Type::All, "{}", R"([{"mid":"1"}])"},
                                                             {Type::All, "7", "nil"},
                                                             {static_cast<Type>(9), R"({"metadatalist":[]})", "nil"}};
  for (const auto& [type, reply, result] : rows) {
    inbox.kesu_getMessageHeadersForType(type, listen());
    answer(reply);
    EXPECT_EQ(takeTold(), Strings{result}) << reply;
  }
  EXPECT_EQ(stored(kHeadersDefault), R"([{"mid":"1"}])");
}

TEST_F(InboxTest, HandsMessagesOverBeforeItRecordsThemAsRead) {
  Strings atHandOver;
  inbox.kesu_getMessagesForType(Type::Unread, [&](const Object& list) {
    atHandOver = {text(*list), stored(kReadMessagesDefault)};
  });
  answer(R"({"payloadlist":[{"mid":"1","x":null},{"mid":"2"}]})");
  EXPECT_EQ(atHandOver, (Strings{R"([{"mid":"1","x":null},{"mid":"2"}])", "none"}));
  EXPECT_EQ(stored(kReadMessagesDefault), R"([{"mid":"1","contentRead":true},{"mid":"2","contentRead":true}])");
}

TEST_F(InboxTest, RecordsMessagesAsReadThoughTheHostThrows) {
  inbox.kesu_getMessagesForType(Type::Unread, [](const Object&) { throw std::runtime_error("from the host"); });
  EXPECT_THROW(answer(R"({"payloadlist":[{"mid":"1"}]})"), std::runtime_error);
  EXPECT_EQ(stored(kReadMessagesDefault), R"([{"mid":"1","contentRead":true}])");
}

TEST_F(InboxTest, AnswersMessagesByTheTypeAsked) {
  const char* reply = R"({"payloadlist":[{"mid":"2"}]})";
  inbox.kesu_getMessagesForType(Type::Read, listen());
  inbox.kesu_getMessagesForType(Type::All, listen());
  answer(reply);
  EXPECT_EQ(takeTold(), (Strings{"nil", R"([[{"mid":"2"}]])"}));
  inbox.kesu_getMessagesForType(Type::All, listen());
  answer(reply);
  EXPECT_EQ(takeTold(), Strings{R"([[{"mid":"2"}],[{"mid":"2","contentRead":true}]])"});
  inbox.kesu_getMessagesForType(Type::All, listen());
  answer("{}");
  inbox.kesu_getMessagesForType(Type::Unread, listen());
  answer("{}");
  inbox.kesu_getMessagesForType(static_cast<Type>(3), listen());
  const std::string twice = R"([{"mid":"2","contentRead":true},{"mid":"2","contentRead":true}])";
  EXPECT_EQ(takeTold(), (Strings{"[" + twice + "]", "nil"}));
  EXPECT_EQ(platform.http.requestCount(), 4U);
}

TEST_F(InboxTest, MarksAMessageReadAndKeepsItsBody) {
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"1"},{"mid":"m"},{"mid":"m"}])"));
  inbox.kesu_getMessageWithContentID("c", "m", listen());
  EXPECT_EQ(stored(kHeadersDefault), R"([{"mid":"1"},{"mid":"m","contentRead":true},{"mid":"m"}])");
  platform.http.answer(0, 200, R"({"a":null,"b":{"c":null,"d":{"e":null}},"f":[null]})");
  platform.settle();
  const std::string body = R"({"a":"","b":{"c":"","d":{}},"f":[]})";
  EXPECT_EQ(takeTold(), Strings{body}) << "null is replaced two levels deep, and left out below";
  EXPECT_EQ(stored(kBodiesDefault), R"([{"mc":)" + body + "}]");
  const std::size_t requests = platform.http.requestCount();
  inbox.kesu_getMessageWithContentID("c", "m", listen());
  EXPECT_EQ(takeTold(), Strings{body}) << "in the same form";
  EXPECT_EQ(platform.http.requestCount(), requests) << "no request and no receipt";
}

TEST_F(InboxTest, ServesNothingFromTheCacheWithoutBothIdentifiers) {
  platform.defaults.set(kHeadersDefault, json(R"([{"mid":"m"}])"));
  platform.defaults.set(kBodiesDefault, json(R"([{"m":{"a":1}},{"c":{"a":2}}])"));
  inbox.kesu_getMessageWithContentID("", "m", listen());
  inbox.kesu_getMessageWithContentID("c", "", listen());
  inbox.kesu_getMessageWithContentID(nil, nil, listen());
  platform.settle();
  EXPECT_TRUE(told.empty());
  EXPECT_EQ(platform.http.requestCount(), 6U);
  EXPECT_EQ(stored(kHeadersDefault), R"([{"mid":"m","contentRead":true}])");
  platform.http.failAll(HttpError::CannotConnect);
  platform.settle();
  EXPECT_EQ(takeTold(), Strings(3, "nil"));
}

TEST_F(InboxTest, StoresRepliesAtTheEndAndCallsNoHostInAnExitHandler) {
  inbox.kesu_getMessageHeadersForType(Type::Unread, listen());
  platform.http.answer(0, 200, R"({"metadatalist":[{"mid":"1"}]})");
  inbox.kesu_countNewUnFetched(listenToCount());
  endAtExit(platform.platform);
  EXPECT_EQ(takeTold(), Strings{}) << "what handlers use may be destroyed when an exit handler runs";
  EXPECT_EQ(stored(kHeadersDefault), R"([{"mid":"1","contentRead":false}])");
  inbox.kesu_countNewUnFetched(listenToCount());
  endOrderly(platform.platform);
  EXPECT_EQ(takeTold(), Strings{"0"}) << "the host itself ends the library";
}

TEST_F(InboxTest, KeepsNineteenBodies) {
  for (int i = 0; i < 25; ++i) {
    inbox.kesu_getMessageWithContentID("c", std::to_string(i), listen());
    platform.settle();
    platform.http.answer(platform.http.requestCount() - 2, 200, "{}");
    platform.settle();
  }
  const auto kept = platform.defaults.get(kBodiesDefault);
  EXPECT_EQ(kept->array()->size(), 19U);
  EXPECT_TRUE(kept->array()->front().dictionary()->contains("24c"));
  EXPECT_TRUE(kept->array()->back().dictionary()->contains("6c"));
}

TEST_F(InboxTest, ReturnsTheKeptTimeAfterAMinute) {
  platform.clock.set(978307200.0 + 475574000.0 + 1000.0);
  for (const auto& [kept, result] : {std::pair(0.0, 0.0), {-5.0, -5.0}, {990.0, 10.0}, {940.0, 60.0}, {939.0, 939.0}}) {
    platform.defaults.set(kLastFetchDefault, kept);
    EXPECT_DOUBLE_EQ(requester.elapsedSecondsAfterLastRequest(), result);
  }
}

Array headers(int count, std::size_t textLength = 10) {
  Array list;
  for (int i = 0; i < count; ++i) {
    list.push_back(Dictionary{{"mid", std::to_string(i)}, {"cid", "c"}, {"title", std::string(textLength, 't')}});
  }
  return list;
}

TEST_F(InboxTest, ManagesThousandsAndWarnsOnce) {
  KesuPriorityLogger::sharedLogger().setLogLevel(2);
  platform.defaults.set(kHeadersDefault, headers(5000));
  platform.defaults.set(kReadMessagesDefault, headers(1000, 1000));
  platform.defaults.synchronize();
  inbox.kesu_getMessageHeadersForType(Type::All, [&](const Object& all) { EXPECT_EQ(all->array()->size(), 5020U); });
  const int before = platform.defaults.synchronizeCount();
  answer(text(Dictionary{{"metadatalist", headers(20)}}));
  EXPECT_EQ(platform.defaults.synchronizeCount(), before + 1) << "a list is written once, not once a message";
  inbox.kesu_getMessagesForType(Type::All, [&](const Object& both) {
    EXPECT_EQ(both->array()->at(0).array()->size() + both->array()->at(1).array()->size(), 1020U);
  });
  answer(text(Dictionary{{"payloadlist", headers(20)}}));
  inbox.kesu_getMessageWithContentID("c", "4999", {});
  inbox.kesu_getTotalUnreadMessages(listenToCount());
  answer("{}");
  EXPECT_EQ(takeTold(), Strings{"5019"});
  EXPECT_EQ(platform.defaults.get(kReadMessagesDefault)->array()->size(), 1020U);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].level, 2);
}

TEST_F(InboxTest, WarnsOfTheSumOfItsKeys) {
  platform.defaults.set(kReadMessagesDefault, headers(300, 1000));
  inbox.kesu_getMessageHeadersForType(Type::Unread, {});
  answer(text(Dictionary{{"metadatalist", headers(10, 1000)}}));
  EXPECT_TRUE(platform.log.takeLines().empty());
  inbox.kesu_getMessageHeadersForType(Type::Unread, {});
  answer(text(Dictionary{{"metadatalist", headers(80, 1000)}}));
  EXPECT_EQ(platform.log.takeLines().size(), 1U);
}

}  // namespace
}  // namespace kesu
