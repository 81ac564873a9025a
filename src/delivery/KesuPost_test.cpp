#include "delivery/KesuPost.h"

#include <gtest/gtest.h>

#include "foundation/Json.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class PostTest : public ::testing::Test {
 protected:
  PostTest() { platform.clock.set(1489579320.1239); }
  ~PostTest() override { KesuPriorityLogger::sharedLogger().setLogLevel(0); }

  /// The body of the i-th request, as it was sent.
  Dictionary body(std::size_t i) { return *parseJson(platform.http.request(i).body)->dictionary(); }

  void answer(std::size_t i, int status) {
    platform.http.answer(i, status);
    platform.settle();
  }

  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuStore store{platform.files, platform.defaults, platform.clock};
  KesuPost post{platform.http, platform.defaults, platform.clock, settings, store};
};

TEST_F(PostTest, SendsOneCompactJsonRequestPerRecord) {
  platform.bundle.dictionary.set("KesuOverrideServer", "http://127.0.0.1:8470/collect?x=1");
  post.post({{"dest", "e"}, {"~e", "Start"}, {"fnk", "x"}, {"empty", ""}, {"null", Null{}}, {"n", 3}, {"flag", true}});
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
  post.post({{"when", Date{1489579320.0}}, {"bytes", Data{1, 2, 3, 4, 5}}});
  EXPECT_EQ(*body(0).find("when"), Value("2017-03-15 12:02:00 +0000"));
  EXPECT_EQ(*body(0).find("bytes"), Value("<01020304 05>"));
  EXPECT_EQ(platform.http.request(0).headers[0].second, "UnknownDestination");
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(lines[0].text, "Unsupported class being passed to NSDictionary, and which is 2017-03-15 12:02:00 +0000");
  post.post({{"list", Array{Date{}}}});
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
    post.post(row.record);
    EXPECT_EQ(platform.log.takeLines().size(), row.logLines);
  }
  platform.settle();
  EXPECT_EQ(platform.http.requestCount(), 0U);
  EXPECT_TRUE(platform.files.paths().empty());
}

TEST_F(PostTest, StampsTheRecordOfAnInterruptedRunOnce) {
  platform.defaults.set("~cfqt", "1489579200000");
  platform.defaults.set("~sfosVersion", "11");
  platform.defaults.set("~sfappbundleShortVersion", "");
  const Dictionary record = {{"ace", "1"}, {"ov", "12"}, {"av", "2.0"}, {"rv", "20"}, {"~cfqt", "1489579200000"}};
  post.post(record);
  const Dictionary stamped = {
      {"ace", "1489579200000"}, {"ov", "11"}, {"av", ""}, {"rv", "20"}, {"~cfqt", "1489579200000"},
      {"ase", "1489579320123"}};
  EXPECT_EQ(body(0), stamped);
  EXPECT_EQ(platform.defaults.keptOnDisk(),
            (Dictionary{{"~cfqt", ""}, {"~sfosVersion", ""}, {"~sfappbundleShortVersion", ""}}));
  post.post(record);
  EXPECT_EQ(*body(1).find("ov"), Value("")) << "blanked versions count as versions";
  post.post({{"ace", "1"}, {"~cfqt", ""}});
  EXPECT_EQ(*body(2).find("ace"), Value("1"));
}

TEST_F(PostTest, StoresAFailedFirstAttempt) {
  post.post({{"dest", "e"}, {"n", 1}, {"null", Null{}}});
  answer(0, 500);
  ASSERT_EQ(store.dictionariesToRepost().size(), 1U);
  const Dictionary stored = store.dictionariesToRepost()[0];
  EXPECT_EQ(stored.find("ase"), nullptr);
  EXPECT_EQ(stored.find("null"), nullptr);
  EXPECT_EQ(*stored.find("dest"), Value("e"));
}

TEST_F(PostTest, DeletesTheFileOfADeliveredRecordOnly) {
  store.add({{"dest", "e"}, {"n", 1}});
  const Dictionary stored = store.dictionariesToRepost().at(0);
  post.repost(stored);
  answer(0, 403);
  EXPECT_EQ(store.storedFiles().size(), 1U);
  post.repost(stored);
  answer(1, 200);
  EXPECT_TRUE(store.storedFiles().empty());
}

TEST_F(PostTest, LogsWhatCannotBeStored) {
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  post.post({{"list", Array{Null{}}}});
  answer(0, 500);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].text.starts_with("[KesuPost:177]Error writing dictionary to disk ")) << lines[0].text;
}

}  // namespace
}  // namespace kesu
