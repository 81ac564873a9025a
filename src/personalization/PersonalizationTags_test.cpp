#include "personalization/PersonalizationTags.h"

#include <gtest/gtest.h>

#include "foundation/Json.h"
#include "platform/OrderlyEnd.h"
#include "records/DefaultsKeys.h"
#include "support/KesuPriorityLogger.h"
#include "testing/MutatedReplies.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

constexpr const char* kTwoTags = R"({"tags":"{\"tags\":[\"gold\",\"sports\"]}"})";

class TagsTest : public ::testing::Test {
 protected:
  TagsTest() {
    platform.bundle.dictionary = {{"KesuMessagingHost", "m.example"}};
    platform.defaults.set(kAppKeyDefault, "key");
    platform.defaults.set(kInstanceIdDefault, "id");
  }

  /// Fetches with this reply; returns what the completion received, one JSON text per call.
  std::vector<std::string> fetch(HttpReply reply) {
    std::vector<std::string> received;
    tags.getTags([&received](const Object& result) {
      std::string text;
      writeJson(result ? *result : Value(), text);
      received.push_back(text);
    });
    platform.http.answer(platform.http.requestCount() - 1, std::move(reply));
    platform.settle();
    return received;
  }
  std::vector<std::string> fetch(const std::string& body) { return fetch(testing::FakeHttpClient::reply(200, body)); }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  PersonalizationTags tags{platform.http, platform.defaults, settings};
};

using Strings = std::vector<std::string>;

TEST_F(TagsTest, AsksWithKeyAndIdentifiers) {
  tags.getTags({});
  platform.bundle.dictionary.set("devmode", "true");
  platform.defaults.set(kInstanceId2Default, "id2");
  tags.getTags({});
  const HttpRequest first = platform.http.request(0);
  EXPECT_EQ(first.method + " " + first.url, "PUT https://m.example/api/user-personalization/gettags");
  EXPECT_EQ(first.body, R"({"kak":"key","kaid":"id"})");
  EXPECT_EQ(first.headers,
            (decltype(first.headers){
                {"Content-Type", "application/json"}, {"Accept-Encoding", "gzip"}, {"Content-Length", "25"}}));
  EXPECT_EQ(platform.http.request(1).url, "https://m.example/api/devmode/user-personalization/gettags");
  EXPECT_EQ(platform.http.request(1).body, R"({"kak":"key","kaid":"id","kaid2":"id2"})");
}

TEST_F(TagsTest, KeepsTheLastListThatHadTags) {
  EXPECT_EQ(fetch(kTwoTags), Strings{R"(["gold","sports"])"});
  for (const char* reply :
       {R"({"tags":"{\"tags\":[]}"})", R"({"tags":"{\"tags\":\"gold\"}"})", R"({"tags":"{}"})", R"({"tags":"[]"})",
        R"({"tags":"{"})", R"({"tags":""})", R"({"tags":["gold"]})", "{}", "[]", "", "no JSON"}) {
    EXPECT_EQ(fetch(reply), Strings{"null"}) << reply;
  }
  EXPECT_TRUE(platform.log.takeLines().empty());
  EXPECT_EQ(*platform.defaults.keptOnDisk().find(kTagsDefault), Value(Array{"gold", "sports"}));
}

TEST_F(TagsTest, KeepsTagsWithoutNulls) {
  EXPECT_EQ(fetch(R"({"tags":"{\"tags\":[null,\"new\"]}"})"), Strings{R"([null,"new"])"}) << "as sent";
  EXPECT_EQ(fetch(R"({"tags":"{\"tags\":[null]}"})"), Strings{"[null]"});
  tags.getTags({});
  platform.http.failAll(HttpError::TimedOut);
  platform.settle();
  EXPECT_EQ(*platform.defaults.keptOnDisk().find(kTagsDefault), Value(Array{"new"}));
}

TEST_F(TagsTest, CallsTheCompletionAsOftenAsTheReplySays) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  HttpReply both = testing::FakeHttpClient::reply(200, kTwoTags);
  both.error = HttpError::ConnectionLost;
  both.errorText = "broke";
  HttpReply bare;
  bare.status = 200;
  EXPECT_EQ(fetch(bare), Strings{});
  EXPECT_EQ(fetch(both), (Strings{"null", R"(["gold","sports"])"}));
  EXPECT_EQ(fetch(testing::FakeHttpClient::reply(503, kTwoTags)), Strings{"null"});
  const auto lines = platform.log.takeLines();
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "[KesuPersonalizationIntelligence:159]Error: Status Code 200, broke - no error");
  EXPECT_EQ(lines[1].text, "[KesuPersonalizationIntelligence:159]Error: Status Code 503, (null) - service unavailable");
}

TEST_F(TagsTest, KeepsTagsThatComeAtTheEndAndCallsNoCompletionThen) {
  tags.getTags([](const Object&) { ADD_FAILURE() << "what a completion uses is destroyed when an exit handler runs"; });
  platform.http.answer(0, 200, kTwoTags);
  endAtExit(platform.platform);
  EXPECT_TRUE(tags.isTagSet("gold"));
}

TEST_F(TagsTest, SendsNothingThatIsNoJson) {
  tags.postInternalWithDictionary({{"key", Date{1}}}, [](const Object&) { ADD_FAILURE(); });
  EXPECT_EQ(platform.http.requestCount(), 0U);
  EXPECT_TRUE(platform.log.takeLines().empty());
}

TEST_F(TagsTest, AnswersFromTheKeptList) {
  EXPECT_FALSE(tags.isTagSet("gold"));
  EXPECT_FALSE(tags.areAnyTagsSet({"gold"}));
  EXPECT_FALSE(tags.areAllTagsSet({"gold"}));
  fetch(kTwoTags);
  for (const auto& [tag, isSet] : {std::pair<Object, bool>("gold", true), {"Gold", false}, {"", false}, {nil, false}}) {
    EXPECT_EQ(tags.isTagSet(tag), isSet);
  }
  platform.defaults.set(kTagsDefault, Array{"gold", "sports", ""});
  EXPECT_FALSE(tags.isTagSet("")) << "whatever is kept";
  const std::tuple<Array, bool, bool> rows[] = {{{"silver", "sports"}, true, false},
                                                {{"gold", "sports"}, true, true},
                                                {{"gold", "silver"}, true, false},
                                                {{"silver", "Sports"}, false, false},
                                                {{}, false, false}};
  for (const auto& [asked, any, all] : rows) {
    EXPECT_EQ(tags.areAnyTagsSet(asked), any);
    EXPECT_EQ(tags.areAllTagsSet(asked), all);
  }
}

TEST_F(TagsTest, SurvivesMutatedReplies) {
  testing::forEachMutation(kTwoTags, [&](const std::string& damaged) {
    const Strings received = fetch(damaged);
    ASSERT_EQ(received.size(), 1U) << damaged;
    ASSERT_TRUE(received[0] == "null" || received[0].starts_with("[")) << damaged;
  });
}

}  // namespace
}  // namespace kesu
