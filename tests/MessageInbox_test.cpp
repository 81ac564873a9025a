// Messages and tags as a host fetches them: on doubles, and over real TLS.
#include <gtest/gtest.h>

#include "drawing/Pictures.h"
#include "facade/Wiring.h"
#include "foundation/Json.h"
#include "messaging/InAppTemplateData.h"
#include "testing/LoopbackServer.h"
#include "testing/RealPlatform.h"
#include "testing/SdkFixture.h"
#include "testing/TemporaryDirectory.h"
#include "testing/TestCertificates.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::LoopbackServer;
using testing::RealPlatform;
using testing::ServedRequest;
using Type = KesuInAppMessageType;

std::string jsonText(const Object& value) {
  std::string text;
  writeJson(value ? *value : Value("nil"), text);
  return text;
}

class MessagesOfAHostTest : public testing::SdkFixture {
 protected:
  Kesu::ObjectHandler listen() {
    return [this](const Object& result) { received.push_back(jsonText(result)); };
  }

  /// Answers the request that is `fromEnd` places from the last.
  void answer(const std::string& body, std::size_t fromEnd = 1) {
    platform.http.answer(platform.http.requestCount() - fromEnd, 200, body);
    platform.settle();
  }

  std::vector<std::string> received;
};

TEST_F(MessagesOfAHostTest, GoFromHeaderToBodyAndSurviveARestart) {
  launch();
  answerAll(200);
  Kesu::getMessageHeadersForType(Type::Unread, listen());
  answer(R"({"metadatalist":[{"mid":"m","cid":"c"}]})");
  EXPECT_FALSE(Kesu::previousReadMessages()) << "not the text that stands for none";
  Kesu::getMessageBodyWithCampaignID("c", "m", listen());
  platform.settle();
  const auto requests = platform.http.requests();
  EXPECT_TRUE(requests[requests.size() - 2].url.ends_with("/api/inapp/getmessage/"));
  EXPECT_EQ(text(lastBody(), "action"), "delivered") << "right behind the request";
  EXPECT_EQ(text(lastBody(), "kaid"), platform.defaults.text("localKaid"));
  answer(R"({"payload":{"title":"Hello"}})", 2);
  die();
  launch();
  answerAll(200);
  Kesu::getMessageBodyWithCampaignID("c", "m", listen());
  Kesu::getMessageHeadersForType(Type::Read, listen());
  EXPECT_EQ(received, (std::vector<std::string>{R"([{"mid":"m","cid":"c"}])", R"({"payload":{"title":"Hello"}})",
                                                R"({"payload":{"title":"Hello"}})",
                                                R"([{"mid":"m","cid":"c","contentRead":true}])"}));
  EXPECT_EQ(jsonText(Kesu::previousReadMessages()), received.back());
}

TEST_F(MessagesOfAHostTest, AnswersForTagsThatWereFetchedBefore) {
  launch();
  answerAll(200);
  KesuPersonalizationIntelligence::sharedInstance().getTags(listen());
  answer(R"({"tags":"{\"tags\":[\"gold\"]}"})");
  relaunch();
  EXPECT_TRUE(KesuPersonalizationIntelligence::isTagSet("gold"));
  EXPECT_TRUE(KesuPersonalizationIntelligence::areAnyTagsSet({"silver", "gold"}));
  EXPECT_FALSE(KesuPersonalizationIntelligence::areAllTagsSet({"silver", "gold"}));
  EXPECT_EQ(received, std::vector<std::string>{R"(["gold"])"});
}

/// The library against a messaging service over TLS and a collector, both on this machine.
class MessagesOverTlsTest : public ::testing::Test {
 protected:
  MessagesOverTlsTest() {
    platform.bundle.dictionary.set("KesuMessagingHost", "127.0.0.1:" + std::to_string(service.port()));
    service.onPath("/api/inapp/count/", Fault::reply(200, R"({"count":2})"));
    service.onPath("/api/inapp/newUnFetched/", Fault::reply(200, R"({"metadatalist":[{"mid":"m","cid":"c"}]})"));
    service.onPath("/api/inapp/getInAppMessages/", Fault::reply(200, R"({"payloadlist":[{"mid":"m"}]})"));
    service.onPath("/api/inapp/getmessage/", Fault::reply(200, R"({"payload":{"title":null}})"));
    service.onPath("/api/user-personalization/gettags",
                   Fault::reply(200, R"({"tags":"{\"tags\":[\"gold\",\"sports\"]}"})"));
    service.onPath("/api/devmode/inapp/count/", Fault::reply(200, R"({"count":99})"));
    Kesu::initialize("key");
  }

  static LinuxHttpClientOptions trusting(const testing::TestCertificates& certificates) {
    LinuxHttpClientOptions options;
    options.caFile = certificates.caFile();
    return options;
  }

  Kesu::ObjectHandler listen() {
    return [this](const Object& result) { received.push_back(jsonText(result)); };
  }
  Kesu::CountHandler listenForCount() {
    return [this](std::int64_t count) { received.push_back(std::to_string(count)); };
  }
  bool awaitReceived(std::size_t count) {
    return platform.pumpUntil([&] { return received.size() >= count; });
  }

  testing::TemporaryDirectory home;
  testing::TestCertificates certificates;
  LoopbackServer service{certificates.server()};
  LoopbackServer collector;
  RealPlatform platform{home.path(), collector.url(), trusting(certificates)};
  std::vector<std::string> received;
};

TEST_F(MessagesOverTlsTest, ServesEveryRequest) {
  const std::function<void()> requests[] = {[&] { Kesu::countNewUnFetched(listenForCount()); },
                                            [&] { Kesu::getMessageHeadersForType(Type::All, listen()); },
                                            [&] { Kesu::getMessagesForType(Type::Unread, listen()); },
                                            [&] { Kesu::getMessageBodyWithCampaignID("c", "m", listen()); },
                                            [&] { KesuPersonalizationIntelligence::getTags(listen()); },
                                            [&] {
                                              EXPECT_TRUE(platform.settle());  // The worker reads the bundle as well.
                                              platform.bundle.dictionary.set("devmode", "TRUE");
                                              Kesu::countNewUnFetched(listenForCount());
                                            }};
  for (const auto& request : requests) {
    const std::size_t before = received.size();
    request();
    ASSERT_TRUE(awaitReceived(before + 1));
  }
  EXPECT_EQ(received,
            (std::vector<std::string>{"2", R"([{"mid":"m","cid":"c","contentRead":false}])", R"([{"mid":"m"}])",
                                      R"({"payload":{"title":""}})", R"(["gold","sports"])", "99"}));
  const std::pair<const char*, const char*> lines[] = {{"PUT", "/api/inapp/count/"},
                                                       {"POST", "/api/inapp/newUnFetched/"},
                                                       {"POST", "/api/inapp/getInAppMessages/"},
                                                       {"PUT", "/api/inapp/getmessage/"},
                                                       {"PUT", "/api/user-personalization/gettags"},
                                                       {"PUT", "/api/devmode/inapp/count/"}};
  const auto served = service.requests();
  ASSERT_EQ(served.size(), std::size(lines));
  for (std::size_t i = 0; i < served.size(); ++i) {
    EXPECT_EQ(served[i].method + served[i].target, std::string(lines[i].first) + lines[i].second);
  }
}

TEST_F(MessagesOverTlsTest, SendsKeyAndIdentifiersAndTheReceiptToTheCollector) {
  const std::size_t before = collector.requestCount();
  Kesu::getMessageBodyWithCampaignID("c", "m", listen());
  ASSERT_TRUE(awaitReceived(1));
  ASSERT_TRUE(collector.waitForRequests(before + 1));
  const ServedRequest request = service.requests().front();
  const Dictionary body = *parseJson(request.body)->dictionary();
  EXPECT_EQ(*body.findText("kaid"), platform.defaults.text("localKaid"));
  EXPECT_EQ(*body.findText("kaid2"), platform.defaults.text("localKaid2"));
  EXPECT_EQ(*body.findText("mid") + *body.findText("cid") + *body.findText("kak"), "mckey");
  std::string names;
  for (const auto& [name, value] : request.headers) {
    names += name + ";";
  }
  EXPECT_EQ(names, "Host;Content-Type;Accept-Encoding;Content-Length;");
  const ServedRequest receipt = collector.requests().back();
  EXPECT_EQ(receipt.header("t"), "n");
  EXPECT_TRUE(receipt.body.starts_with(R"({"mid":"m","cid":"c","kak":"key","kaid":")")) << receipt.body;
}

TEST_F(MessagesOverTlsTest, FetchesPicturesOnTheImageWorkerAndCachesThem) {
  const Image picture(2, 1, {0xFF112233, 0xFF445566});
  service.onPath("/i.png", Fault::reply(200, *encodePng(picture)));
  const InAppTemplateData data({{"imageSourceURL", service.url("/i.png")}}, false);
  std::atomic<bool> isThere{false};
  data.downloadImageWithCompletionHandler(wiring().imageLoader, [&](const ImagePtr& image) {
    sharedImageCache().cacheImage(image, data.imageURL());
    isThere = image != nullptr;
  });
  ASSERT_TRUE(platform.pumpUntil([&] { return isThere.load(); }));
  ASSERT_TRUE(platform.imageWorker.drain(10.0));
  Application::shared().didReceiveMemoryWarning();
  const ImagePtr cached = sharedImageCache().imageForURLString(data.imageURL());
  ASSERT_NE(cached, nullptr);
  EXPECT_EQ(cached->pixels()[1], picture.pixels()[1]);
}

}  // namespace
}  // namespace kesu
