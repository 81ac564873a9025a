#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <future>
#include <thread>

#include "foundation/Json.h"
#include "foundation/Mutex.h"
#include "testing/RawConnection.h"
#include "testing/TemporaryDirectory.h"
#include "testing/TestRecord.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/http/HttpFetch.h"
#include "tools/kesu-dev/messages/ImageSize.h"
#include "tools/kesu-dev/messages/MessageReport.h"

namespace kesu::dev {
namespace {

const std::string kExamples = KESU_EXAMPLE_MESSAGES;
constexpr const char* kAsking = R"({"kak":"demo","kaid":"one","kaid2":"two"})";
constexpr const char* kProduction = "/api/inapp/";
constexpr const char* kDevelopment = "/api/devmode/inapp/";

Dictionary objectFrom(const std::string& json) {
  const std::optional<Value> parsed = parseJson(json);
  return parsed && parsed->dictionary() != nullptr ? *parsed->dictionary() : Dictionary();
}

Array listFrom(const Dictionary& from, std::string_view key) {
  const Value* value = from.find(key);
  return value != nullptr && value->array() != nullptr ? *value->array() : Array();
}

std::string messageFile(const std::string& mid, const std::string& templateData = "{}") {
  return R"({"mid":")" + mid +
         R"(","cid":"spring","date":"2026-03-01","payload":{"title":"T","msg":"M","templateId":)" +
         R"("p_temp_2","templateData":)" + templateData + "}}";
}

// The real services with a directory of messages, and a client that trusts only their certificate.
class MessagingTest : public ::testing::Test {
 protected:
  MessagingTest() {
    std::signal(SIGPIPE, SIG_IGN);  // OpenSSL in our client writes to connections that a fault has closed.
    start(directory_.path());
  }

  void start(const std::string& messages) {
    Services::Options options;
    options.port = 0;
    options.messages = messages;
    options.logLine = [this](const std::string& line) {
      const MutexLock lock(mutex_);
      said_ += line + "\n";
    };
    std::string error;
    services_ = nullptr;
    services_ = Services::start(options, error);
    ASSERT_NE(services_, nullptr) << error;
    collector_ = parseServerUrl(services_->url()).value();
  }

  void write(const std::string& name, const std::string& content) const { directory_.write(name, content); }

  std::unique_ptr<httplib::SSLClient> client(const std::string& host = "127.0.0.1") const {
    const std::string address = services_->messagingHost();
    auto client = std::make_unique<httplib::SSLClient>(host, std::stoi(address.substr(address.find(':') + 1)));
    client->set_ca_cert_path(services_->certificateFile().c_str());
    client->enable_server_certificate_verification(true);
    client->set_read_timeout(60);
    client->set_keep_alive(true);
    return client;
  }

  httplib::Result put(const std::string& path, const std::string& body = kAsking) const {
    return client()->Put(path, body, "application/json");
  }

  httplib::Result post(const std::string& path, const std::string& body = kAsking) const {
    return client()->Post(path, body, "application/json");
  }

  std::int64_t count(const std::string& body = kAsking) const {
    const Dictionary reply = objectFrom(put("/api/inapp/count/", body)->body);
    const Value* value = reply.find("count");
    return value == nullptr ? -1 : value->integerValue();
  }

  httplib::Client collector() const { return httplib::Client(collector_.host, collector_.port); }

  void setFault(const std::string& json) const {
    ASSERT_EQ(collector().Put("/faults", json, "application/json")->status, 200) << json;
  }

  void postMessageRecord(const std::string& more, const std::string& messageId) const {
    Dictionary body = testBody("n", messageId);
    for (const auto& entry : objectFrom(more)) {
      body.set(entry.key, entry.value);
    }
    collector().Post("/collect", {{"t", "n"}, {"v", kTestVersion}}, jsonText(body), "application/json");
  }

  Dictionary report() const { return objectFrom(fetch(collector_, "/messages").body); }

  std::string said() {
    const MutexLock lock(mutex_);
    return said_;
  }

  testing::TemporaryDirectory directory_;
  std::unique_ptr<Services> services_;
  ServerAddress collector_;
  Mutex mutex_;
  std::string said_ KESU_GUARDED_BY(mutex_);
};

TEST_F(MessagingTest, AnswersEveryCallInBothModesOverTls) {
  write("a.json", messageFile("m1"));
  write("tags.json", R"({"tags":["gold","sports"]})");
  int instance = 0;
  for (const std::string base : {kProduction, kDevelopment}) {
    const auto asking = [&](const std::string& more = "") {
      return R"({"kak":"k","kaid":")" + std::to_string(instance) + R"(","kaid2":"b")" + more + "}";
    };
    EXPECT_EQ(put(base + "count/", asking())->body, R"({"count":1})");
    EXPECT_EQ(post(base + "newUnFetched/", asking())->body,
              R"({"metadatalist":[{"mid":"m1","cid":"spring","title":"T","date":"2026-03-01"}]})");
    const std::string whole = R"({"mid":"m1","cid":"spring","date":"2026-03-01","payload":{"title":"T","msg":"M",)"
                              R"("templateId":"p_temp_2","templateData":"{}"}})";
    EXPECT_EQ(put(base + "getmessage/", asking(R"(,"mid":"m1","cid":"spring")"))->body, whole);
    ++instance;
    EXPECT_EQ(post(base + "getInAppMessages/", asking())->body, R"({"payloadlist":[)" + whole + "]}");
    ++instance;
  }
  for (const char* path : {"/api/user-personalization/gettags", "/api/devmode/user-personalization/gettags"}) {
    EXPECT_EQ(put(path)->body, R"({"tags":"{\"tags\":[\"gold\",\"sports\"]}"})");
  }
  EXPECT_EQ(client("localhost")->Put("/api/inapp/count/", kAsking, "application/json")->status, 200);
}

TEST_F(MessagingTest, IsTrustedByItsCertificateOnly) {
  const auto stranger = client();
  stranger->set_ca_cert_path("/etc/ssl/certs/ca-certificates.crt");
  EXPECT_FALSE(stranger->Put("/api/inapp/count/", kAsking, "application/json"));
  const std::string file = services_->certificateFile();
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  services_ = nullptr;
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(MessagingTest, CountsGoDownForTheInstanceThatFetched) {
  write("a.json", messageFile("m1"));
  write("b.json", messageFile("m2"));
  const std::string other = R"({"kak":"demo","kaid":"one","kaid2":"three"})";
  EXPECT_EQ(count(), 2);
  put("/api/inapp/getmessage/", R"({"kak":"demo","kaid":"one","kaid2":"two","mid":"m2","cid":"spring"})");
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(listFrom(objectFrom(post("/api/inapp/newUnFetched/")->body), "metadatalist").size(), 1U);
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(post("/api/inapp/newUnFetched/")->body, R"({"metadatalist":[]})");
  EXPECT_EQ(post("/api/inapp/getInAppMessages/")->body, R"({"payloadlist":[]})");
  write("c.json", messageFile("m3"));
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(count(other), 3);
  EXPECT_EQ(listFrom(objectFrom(post("/api/inapp/getInAppMessages/", other)->body), "payloadlist").size(), 3U);
  EXPECT_EQ(count(other), 0);
  EXPECT_EQ(collector().Post("/reset")->status, 200);
  EXPECT_EQ(count(), 3);
}

TEST_F(MessagingTest, GivesEachMessageOnceToRequestsAtTheSameTime) {
  for (int i = 0; i < 20; ++i) {
    write("m" + std::to_string(i) + ".json", messageFile("m" + std::to_string(i)));
  }
  std::vector<std::future<std::size_t>> replies;
  for (int i = 0; i < 8; ++i) {
    replies.push_back(std::async(std::launch::async, [&] {
      return listFrom(objectFrom(post("/api/inapp/newUnFetched/")->body), "metadatalist").size();
    }));
  }
  std::size_t sum = 0;
  for (auto& reply : replies) {
    sum += reply.get();
  }
  EXPECT_EQ(sum, 20U);
}

TEST_F(MessagingTest, RefusesAndStoresBadRequests) {
  const struct {
    const char* method;
    const char* path;
    const char* type;
    const char* body;
    int status;
    const char* reason;
  } rows[] = {
      {"PUT", "/api/inapp/count/", "text/plain", kAsking, 400, "Content-Type is \"text/plain\", not application/json"},
      {"PUT", "/api/inapp/count/", "application/json", "{", 400, "the body is not valid JSON"},
      {"PUT", "/api/inapp/count/", "application/json", "[]", 400, "the body is JSON but not an object"},
      {"PUT", "/api/inapp/count/", "application/json", R"({"kaid":"a","kaid2":"b"})", 400,
       "\"kak\" (application key) is missing"},
      {"PUT", "/api/inapp/count/", "application/json", R"({"kak":"k","kaid":"a","kaid2":""})", 400,
       "\"kaid2\" is empty"},
      {"PUT", "/api/inapp/count/", "application/json", R"({"kak":"k","kaid":1,"kaid2":"b"})", 400,
       "\"kaid\" is not a text"},
      {"POST", "/api/inapp/newUnFetched/", "application/json", R"({"kak":"k","kaid":"a","kaid2":"b","dest":"count/"})",
       400, "\"dest\" does not belong to this request"},
      {"PUT", "/api/devmode/inapp/getmessage/", "application/json", R"({"kak":"k","kaid":"a","kaid2":"b","mid":"m"})",
       400, "\"cid\" (campaign identifier) is missing"},
      {"PUT", "/api/inapp/getmessage/", "application/json", R"({"kak":"k","kaid":"a","kaid2":"b","mid":"m","cid":"c"})",
       404, "there is no message with this \"mid\" and \"cid\""},
      {"POST", "/api/inapp/count/", "application/json", kAsking, 405, "the method is POST, not PUT"},
      {"PUT", "/api/inapp/count", "application/json", kAsking, 404, "the messaging service has no such path"},
  };
  for (const auto& row : rows) {
    const httplib::Result result = std::string_view(row.method) == "PUT" ? client()->Put(row.path, row.body, row.type)
                                                                         : client()->Post(row.path, row.body, row.type);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, row.status) << row.reason;
    EXPECT_EQ(listFrom(objectFrom(result->body), "reasons"), Array{row.reason}) << result->body;
  }
  const auto bad = services_->store().read(RecordStore::Which::Bad, 0, 100);
  ASSERT_EQ(bad.size(), std::size(rows));
  EXPECT_EQ(bad.back().path, "/api/inapp/count");
  EXPECT_EQ(bad.back().reasons.front(), rows[std::size(rows) - 1].reason);
}

TEST_F(MessagingTest, AppliesFaultsOnEveryRoute) {
  write("a.json", messageFile("m1"));
  for (const MessagingRoute& route : messagingRoutes()) {
    const std::string path(route.developmentPath);
    const std::string body = route.call == MessagingCall::SingleMessage
                                 ? R"({"kak":"demo","kaid":"one","kaid2":"two","mid":"m1","cid":"spring"})"
                                 : kAsking;
    const auto ask = [&] { return route.method == "PUT" ? put(path, body) : post(path, body); };
    setFault(R"([{"route":")" + path + R"(","status":503,"times":1},{"route":")" + path +
             R"(","lostReply":true,"times":1}])");
    EXPECT_EQ(ask()->status, 503) << path;
    EXPECT_FALSE(ask()) << path;
    EXPECT_EQ(ask()->status, 200) << path;
  }
  setFault(R"({"route":"/api/inapp/*","redirect":"https://127.0.0.1:1/"})");
  EXPECT_EQ(put("/api/inapp/count/")->get_header_value("Location"), "https://127.0.0.1:1/");
  EXPECT_EQ(put("/api/devmode/inapp/count/")->status, 200);
}

TEST_F(MessagingTest, StopsWhileARequestHangs) {
  setFault(R"({"route":"/api/inapp/count/","hang":true})");
  auto hanging = std::async(std::launch::async, [&] { return static_cast<bool>(put("/api/inapp/count/")); });
  while (services_->faults().hits() == 0) {
    std::this_thread::yield();
  }
  services_->stop();
  EXPECT_FALSE(hanging.get());
}

TEST_F(MessagingTest, ShowsReceiptsAndPressesBesideTheirMessage) {
  write("a.json", messageFile("m1"));
  post("/api/inapp/newUnFetched/");
  put("/api/inapp/getmessage/", R"({"kak":"demo","kaid":"one","kaid2":"two","mid":"m1","cid":"spring"})");
  const std::string ids = R"("mid":"m1","cid":"spring")";
  postMessageRecord("{" + ids + R"(,"action":"delivered"})", "AbCdEfGhIjKlMnOpQrSt01");
  postMessageRecord("{" + ids + R"(,"action":"delivered"})", "AbCdEfGhIjKlMnOpQrSt01");
  postMessageRecord("{" + ids + R"(,"action":"cta","btnId":"1","btnName":"Later"})", "AbCdEfGhIjKlMnOpQrSt02");
  postMessageRecord(R"({"mid":"gone","cid":"c","action":"delivered"})", "AbCdEfGhIjKlMnOpQrSt03");
  client()->Post("/hook", R"({"v":"10-i"})", "application/json");
  const Dictionary all = report();
  const std::string text = messageTable(all, 100);
  EXPECT_NE(text.find("m1    spring  T      1        1       1          1 Later (1)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("gone  c              0        0       1          (no longer in the directory)\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find(R"(: {"v":"10-i"})"), std::string::npos) << text;
  EXPECT_EQ(listFrom(all, "messages").size(), 2U);
  EXPECT_NE(said().find("web hook called"), std::string::npos);
}

TEST_F(MessagingTest, ServesThePicturesOfItsDirectoryOnly) {
  std::filesystem::create_directory(directory_ / "secret");
  write("p.png", "a picture");
  write("a.json", "{}");
  write("secret/p.png", "a secret");
  for (const bool encrypted : {true, false}) {
    const auto get = [&](const char* path) { return encrypted ? client()->Get(path) : collector().Get(path); };
    EXPECT_EQ(get("/images/p.png")->body, "a picture");
    EXPECT_EQ(get("/images/p.png")->get_header_value("Content-Type"), "image/png");
    for (const char* path : {"/images/", "/images/q.png", "/images/a.json", "/images/secret/p.png",
                             "/images/..%2fp.png", "/images/secret%2fp.png", "/images/.p.png"}) {
      EXPECT_EQ(get(path)->status, 404) << path;
    }
  }
}

TEST_F(MessagingTest, ReportsASkippedFileOnceUntilItIsRepaired) {
  const std::string line = "skipped a.json: is not valid JSON\n";
  write("a.json", "{");
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(said(), line);
  EXPECT_EQ(listFrom(report(), "problems"), Array{"a.json: is not valid JSON"});
  write("a.json", messageFile("m1"));
  EXPECT_EQ(count(), 1);
  write("a.json", "{");
  EXPECT_EQ(count(), 0);
  EXPECT_EQ(said(), line + line);
}

TEST_F(MessagingTest, RefusesRequestsOfWebPages) {
  for (const httplib::Headers& headers :
       {httplib::Headers{{"Host", "page.example"}}, httplib::Headers{{"Origin", "https://page.example"}},
        httplib::Headers{{"Sec-Fetch-Site", "cross-site"}}}) {
    EXPECT_EQ(client()->Put("/api/inapp/count/", headers, kAsking, "application/json")->status, 421);
  }
}

TEST_F(MessagingTest, RefusesPlainConnectionsAndStopsWithOneOpen) {
  const int port = std::stoi(services_->messagingHost().substr(std::string("127.0.0.1:").size()));
  EXPECT_FALSE(httplib::Client("127.0.0.1", port).Put("/api/inapp/count/", kAsking, "application/json"));
  const UniqueFd silent = kesu::testing::sendRaw(port, "");
  EXPECT_EQ(count(), 0);
  services_->stop();
  char byte = 0;
  EXPECT_LE(recv(silent.get(), &byte, 1, 0), 0);
}

TEST_F(MessagingTest, ServesTheExamplesAndTheAwkwardMessages) {
  start(kExamples);
  EXPECT_EQ(count(), 3);
  for (const Value& value : listFrom(objectFrom(post("/api/inapp/getInAppMessages/")->body), "payloadlist")) {
    const Dictionary payload = *value.dictionary()->find("payload")->dictionary();
    const Dictionary data = objectFrom(*payload.findText("templateData"));
    const std::string url = *data.findText("imageSourceURL");
    const httplib::Result picture = client()->Get(url.substr(url.find("/images/")));
    ASSERT_TRUE(picture && picture->status == 200) << url;
    EXPECT_LT(picture->body.size(), 150'000U);
    EXPECT_EQ(imageSize(picture->body), (ImageSize{1160, 652}));
    EXPECT_FALSE(listFrom(data, "buttons").empty());
  }
  start(kExamples + "/awkward");
  const auto files = std::filesystem::directory_iterator(kExamples + "/awkward");
  const auto messages = std::count_if(begin(files), end(files), [](const std::filesystem::directory_entry& entry) {
    return entry.path().extension() == ".json" && entry.path().filename() != "tags.json";
  });
  EXPECT_GE(messages, 14);
  EXPECT_EQ(count(), messages) << said();
}

}  // namespace
}  // namespace kesu::dev
