#include "delivery/KesuPost.h"

#include <gtest/gtest.h>

#include <limits>

#include "testing/DeliveryTest.h"

namespace kesu {
namespace {

using PostTest = testing::DeliveryTest;

TEST_F(PostTest, SendsOneCompactJsonRequestPerRecord) {
  platform.bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:8470/collect?x=1");
  send({{"dest", "e"}, {"~e", "Start"}, {"fnk", "x"}, {"empty", ""}, {"null", Null{}}, {"n", 3}, {"flag", true}});
  const HttpRequest sent = platform.http.request(0);
  EXPECT_EQ(sent.method, "POST");
  EXPECT_EQ(sent.url, "http://127.0.0.1:8470/collect?x=1");
  EXPECT_EQ(sent.body, R"({"~e":"Start","empty":"","n":3,"flag":true,"ase":"1489579320123"})");
  const std::vector<std::pair<std::string, std::string>> headers = {
      {"t", "e"},
      {"v", "10-i-3.2.3"},
      {"Content-Type", "application/json"},
      {"Accept-Encoding", "gzip"},
      {"Content-Length", std::to_string(sent.body.size())}};
  EXPECT_EQ(sent.headers, headers);
  EXPECT_TRUE(sent.ignoresBody);
}

TEST_F(PostTest, KeepsTheFirstEndpointAndNamesItOnce) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  platform.bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:1/");
  EXPECT_EQ(post.postURL("e"), "http://127.0.0.1:1/");
  platform.bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:2/");
  EXPECT_EQ(post.postURL("t"), "http://127.0.0.1:1/");
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text, "[KesuPost:224]\n\n\n\nKesu endpoint is = http://127.0.0.1:1/\n\n\n\n");
}

TEST_F(PostTest, DescribesUnsupportedValuesAtTheTopOnly) {
  send({{"when", Date{1489579320.0}}, {"bytes", Data{1, 2, 3, 4, 5}}});
  EXPECT_EQ(*body(0).find("when"), Value("2017-03-15 12:02:00 +0000"));
  EXPECT_EQ(*body(0).find("bytes"), Value("<01020304 05>"));
  EXPECT_EQ(platform.http.request(0).headers[0].second, "UnknownDestination");
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "Unsupported class being passed to NSDictionary, and which is 2017-03-15 12:02:00 +0000");
  send({{"list", Array{Date{}}}});
  EXPECT_EQ(platform.http.requestCount(), 1U) << "a date inside an array cannot be sent";
  EXPECT_TRUE(platform.log.takeLines().empty());
}

TEST_F(PostTest, RefusesWhatJsonCannotCarry) {
  Value deep = 1;
  for (int i = 0; i < 1000; ++i) {
    deep = Array{std::move(deep)};
  }
  const struct {
    Dictionary record;
    std::size_t logLines;
  } rows[] = {{{{"n", std::numeric_limits<double>::quiet_NaN()}}, 0},
              {{{"n", std::numeric_limits<double>::infinity()}}, 0},
              {{{"text", "\xff"}}, 1},
              {{{"\xc3", "bad key"}}, 1},
              {{{"deep", deep}}, 1}};
  for (const auto& row : rows) {
    send(row.record);
    EXPECT_EQ(platform.log.takeLines().size(), row.logLines);
  }
  platform.settle();
  EXPECT_EQ(platform.http.requestCount(), 0U);
  EXPECT_TRUE(platform.files.paths().empty());
}

TEST_F(PostTest, DatesTheRecordOfAnInterruptedRunByTheRun) {
  send({{"ace", "1"}, {"av", "2.0"}, {"~cfqt", "1489579200000"}});
  send({{"ace", "1"}, {"~cfqt", ""}});
  EXPECT_EQ(
      body(0),
      (Dictionary{{"ace", "1489579200000"}, {"av", "2.0"}, {"~cfqt", "1489579200000"}, {"ase", "1489579320123"}}));
  EXPECT_EQ(*body(1).find("ace"), Value("1"));
}

TEST_F(PostTest, StoresAFailedFirstAttempt) {
  send({{"dest", "e"}, {"ase", ""}, {"n", 1}, {"null", Null{}}});
  answer(0, 500);
  ASSERT_EQ(store.dictionariesToRepost().size(), 1U);
  const Dictionary stored = store.dictionariesToRepost()[0];
  EXPECT_EQ(stored.find("ase"), nullptr);
  EXPECT_EQ(stored.find("null"), nullptr);
  EXPECT_EQ(*stored.find("dest"), Value("e"));
}

TEST_F(PostTest, LogsWhatCannotBeStored) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  send({{"list", Array{Null{}}}});
  answer(0, 500);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_TRUE(lines[0].text.starts_with("[KesuPost:177]Error writing dictionary to disk ")) << lines[0].text;
  EXPECT_EQ(lines[1].level, 0);
}

TEST_F(PostTest, EndsALoggedRecordByItsOutcome) {
  const std::pair<HttpReply, std::size_t> rows[] = {
      {testing::FakeHttpClient::reply(204), 0},
      {testing::FakeHttpClient::reply(400), 0},
      {testing::FakeHttpClient::reply(500), 1},
      {testing::FakeHttpClient::failure(HttpError::Cancelled), 2}};  // By a host's own client.
  for (const auto& [reply, files] : rows) {
    platform.clock.advance(0.001);
    send({{"dest", "e"}});
    EXPECT_EQ(platform.outbox.openCount(), 1U);
    platform.http.answer(platform.http.requestCount() - 1, reply);
    platform.settle();
    EXPECT_EQ(platform.outbox.openCount(), 0U);
    EXPECT_EQ(store.storedFiles().size(), files);
  }
}

TEST_F(PostTest, WritesNoFileOfALoggedRecordWhileTheProcessEnds) {
  send({{"dest", "e"}, {"n", 1}});
  platform.outbox.refuse(true);
  send({{"dest", "e"}, {"n", 2}});
  outbox.beginEnd();
  platform.http.fail(0, HttpError::CannotConnect);
  platform.http.failAll(HttpError::Cancelled);
  platform.settle();
  EXPECT_EQ(platform.outbox.openCount(), 1U);
  ASSERT_EQ(store.dictionariesToRepost().size(), 1U) << "the log did not take this one";
  EXPECT_EQ(*store.dictionariesToRepost()[0].find("n"), Value(2));
}

}  // namespace
}  // namespace kesu
