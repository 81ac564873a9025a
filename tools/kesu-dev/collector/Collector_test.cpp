#include <gtest/gtest.h>
#include <httplib.h>

#include <future>
#include <thread>

#include "foundation/Json.h"
#include "testing/RawConnection.h"
#include "testing/TestRecord.h"
#include "tools/kesu-dev/commands/Services.h"
#include "tools/kesu-dev/http/HttpFetch.h"

namespace kesu::dev {
namespace {

constexpr int kPatienceSeconds = 60;

// The real services on a free port, and a client.
class CollectorTest : public ::testing::Test {
 protected:
  CollectorTest() { start({}); }

  void start(Services::Options options) {
    options.port = 0;
    services_ = nullptr;
    services_ = Services::start(options, error_);
    ASSERT_NE(services_, nullptr) << error_;
    server_ = parseServerUrl(services_->url()).value();
  }

  httplib::Client client() const {
    httplib::Client client(server_.host, server_.port);
    client.set_read_timeout(kPatienceSeconds);
    client.set_keep_alive(true);
    client.set_tcp_nodelay(true);
    return client;
  }

  httplib::Result post(const std::string& body, const std::string& destination = "e") const {
    return client().Post("/collect", {{"t", destination}, {"v", kTestVersion}}, body, "application/json");
  }

  // Status of the reply; 0 = none came.
  int postStatus(const std::string& body, const std::string& destination = "e") const {
    const httplib::Result result = post(body, destination);
    return result ? result->status : 0;
  }

  Dictionary get(const std::string& path) const {
    const std::optional<Value> parsed = parseJson(fetch(server_, path).body);
    return parsed && parsed->dictionary() != nullptr ? *parsed->dictionary() : Dictionary();
  }

  std::int64_t count(const char* what) const {
    const Dictionary counts = get("/all");
    const Value* value = counts.find(what);
    return value == nullptr ? -1 : value->integerValue();
  }

  std::size_t listed(const std::string& path) const {
    const Dictionary page = get(path);
    const Value* records = page.find("records");
    return records != nullptr && records->array() != nullptr ? records->array()->size() : 999;
  }

  void setFault(const std::string& json) const {
    const httplib::Result result = client().Put("/faults", json, "application/json");
    ASSERT_TRUE(result && result->status == 200) << json;
  }

  std::string exchange(const std::string& bytes) const { return kesu::testing::exchangeRaw(server_.port, bytes); }

  std::string hostHeader() const { return "Host: " + services_->hostAndPort() + "\r\n"; }

  // The first events of a stream, "id:name" each.
  std::string eventsAfter(const httplib::Headers& headers, const std::string& path, std::size_t howMany) const {
    std::string seen;
    EventParser parser;
    client().Get(path, headers, [&](const char* bytes, std::size_t size) {
      parser.feed({bytes, size}, [&](const ServerEvent& event) {
        if (howMany > 0) {
          seen += std::to_string(event.id) + ":" + event.name + " ";
          --howMany;
        }
      });
      return howMany > 0;
    });
    return seen;
  }

  std::string error_;
  std::unique_ptr<Services> services_;
  ServerAddress server_;
};

TEST_F(CollectorTest, SortsRecordsIntoGoodBadAndDuplicate) {
  const httplib::Result good = post(testRecord("e"));
  ASSERT_TRUE(good);
  EXPECT_EQ(good->body, R"({"ok":true})");
  const httplib::Result bad = post("{}", "s");
  ASSERT_TRUE(bad);
  EXPECT_EQ(bad->status, 200);
  EXPECT_NE(bad->body.find("\\\"kak\\\" (application key given to initialize) is missing"), std::string::npos);
  EXPECT_EQ(postStatus(testRecord("e")), 200);
  EXPECT_EQ(count("good"), 2);
  EXPECT_EQ(count("bad"), 1);
  EXPECT_EQ(count("duplicates"), 1);
  EXPECT_EQ(listed("/good"), 2U);
  EXPECT_EQ(listed("/good?after=1&limit=5"), 1U);
  EXPECT_EQ(listed("/good?limit=1"), 1U);
  EXPECT_EQ(listed("/bad"), 1U);
}

TEST_F(CollectorTest, KeepsHeadersAndBodyOfARecord) {
  post(testRecord("e"));
  const Dictionary page = get("/good");
  const auto record = storedRecordFromJson(page.find("records")->array()->at(0));
  ASSERT_TRUE(record);
  EXPECT_EQ(record->body, testRecord("e"));
  EXPECT_NE(record->headers.find(R"("t":"e")"), std::string::npos) << record->headers;
  EXPECT_NE(record->headers.find(R"("v":"10-i-3.2.3")"), std::string::npos);
  EXPECT_EQ(record->headers.find("REMOTE"), std::string::npos);
}

TEST_F(CollectorTest, AnswersBadRecordsWith400WhenStrict) {
  Services::Options options;
  options.strict = true;
  start(options);
  EXPECT_EQ(postStatus("{}"), 400);
  EXPECT_EQ(postStatus(testRecord("e")), 200);
  EXPECT_EQ(count("bad"), 1);
}

TEST_F(CollectorTest, AppliesEachFaultOnce) {
  const struct {
    const char* fault;
    int status;  // 0 = no reply
    std::int64_t accepted;
  } rows[] = {
      {R"({"route":"/collect","status":500,"times":1})", 500, 0},
      {R"({"route":"/collect","status":204,"times":1})", 204, 1},
      {R"({"route":"*","close":"before","times":1})", 0, 0},
      {R"({"route":"*","close":"after","times":1})", 0, 0},
      {R"({"route":"*","lostReply":true,"times":1})", 0, 1},
      {R"({"route":"*","garbageBody":true,"times":1})", 200, 1},
      {R"({"route":"*","redirect":"http://127.0.0.1:1/x","times":1})", 307, 0},
      {R"({"route":"*","delayMs":1,"times":1})", 200, 1},
  };
  for (const auto& row : rows) {
    ASSERT_EQ(client().Post("/reset")->status, 200);
    setFault(row.fault);
    EXPECT_EQ(postStatus(testRecord("e")), row.status) << row.fault;
    EXPECT_EQ(count("total"), row.accepted) << row.fault;
    EXPECT_EQ(postStatus(testRecord("e")), 200) << row.fault;
  }
  EXPECT_EQ(count("faultHits"), static_cast<std::int64_t>(std::size(rows)));
}

TEST_F(CollectorTest, RemovesFaultsByRouteAndRefusesBadOnes) {
  setFault(R"([{"route":"/a","garbageBody":true},{"route":"/b","status":500}])");
  EXPECT_FALSE(parseJson(client().Post("/a", "{}", "application/json")->body));
  EXPECT_EQ(client().Delete("/faults?route=/a")->status, 200);
  EXPECT_EQ(client().Post("/a", "{}", "application/json")->body.front(), '{');
  EXPECT_EQ(client().Post("/b", "{}", "application/json")->status, 500);
  EXPECT_EQ(client().Post("/faults", R"({"route":"/a"})", "application/json")->status, 400);
}

TEST_F(CollectorTest, ClosesBeforeTheBodyIsSent) {
  setFault(R"({"route":"*","close":"before"})");
  EXPECT_EQ(exchange("POST /collect HTTP/1.1\r\n" + hostHeader() + "Content-Length: 10\r\n\r\n"), "");
}

TEST_F(CollectorTest, HangsUntilTheFaultIsRemoved) {
  setFault(R"({"route":"*","hang":true})");
  auto status = std::async(std::launch::async, [&] { return postStatus(testRecord("e")); });
  while (count("faultHits") == 0) {
    std::this_thread::yield();
  }
  EXPECT_EQ(client().Delete("/faults")->status, 200);
  EXPECT_EQ(status.get(), 0);
  EXPECT_EQ(count("total"), 0);
}

TEST_F(CollectorTest, StopsWhileRequestsHang) {
  setFault(R"({"route":"*","hang":true})");
  std::vector<std::future<int>> statuses;
  for (int i = 0; i < 4; ++i) {
    statuses.push_back(std::async(std::launch::async, [&] { return postStatus(testRecord("e")); }));
  }
  auto follower = std::async(std::launch::async, [&] { return eventsAfter({}, "/events", 1); });
  while (count("faultHits") < 4) {
    std::this_thread::yield();
  }
  services_->stop();
  for (auto& status : statuses) {
    EXPECT_EQ(status.get(), 0);
  }
  EXPECT_EQ(follower.get(), "");
}

TEST_F(CollectorTest, RefusesOtherHostsAndClosesWithTheBodyUnread) {
  const std::string reply = exchange("POST /collect HTTP/1.1\r\nHost: page.example\r\nContent-Length: 10\r\n\r\n{}");
  EXPECT_EQ(reply.substr(0, 12), "HTTP/1.1 421");
  EXPECT_EQ(count("total"), 0);
}

TEST_F(CollectorTest, NeedsALength) {
  const std::string request = "POST /collect HTTP/1.1\r\nConnection: close\r\n" + hostHeader() + "\r\n";
  EXPECT_EQ(exchange(request).substr(0, 12), "HTTP/1.1 411");
}

TEST_F(CollectorTest, DispatchesByPathAndMethod) {
  EXPECT_EQ(client().Post("/any/where", {{"t", "e"}, {"v", kTestVersion}}, testRecord("e"), "application/json")->status,
            200);
  EXPECT_EQ(count("good"), 1);
  EXPECT_EQ(client().Post("/all", "{}", "application/json")->status, 405);
  EXPECT_EQ(client().Put("/collect", "{}", "application/json")->status, 404);
  EXPECT_NE(client().Get("/")->body.find("</html>"), std::string::npos);
  EXPECT_NE(client().Get("/help")->body.find("POST /collect"), std::string::npos);
  EXPECT_EQ(client().Head("/events")->status, 200);
  EXPECT_NE(client().Get("/keys")->body.find(R"({"key":"kak","group":"common","meaning":"application key)"),
            std::string::npos);
}

TEST_F(CollectorTest, AnswersEveryRouteThatHelpLists) {
  const std::string help = client().Get("/help")->body;
  for (const Route& route : collectorRoutes()) {
    const std::string path(route.path);
    const bool isAnswered = route.method != "GET" || path.ends_with('*') || client().Head(path)->status == 200;
    EXPECT_TRUE(isAnswered) << path;
    EXPECT_NE(help.find(std::string(route.method) + " " + path + " "), std::string::npos) << path;
    EXPECT_NE(help.find(route.sentence), std::string::npos) << path;
  }
}

TEST_F(CollectorTest, EventStreamResumesWhereItBroke) {
  for (const char* id : {"AbCdEfGhIjKlMnOpQrSt01", "AbCdEfGhIjKlMnOpQrSt02", "AbCdEfGhIjKlMnOpQrSt03"}) {
    post(testRecord("e", id));
  }
  EXPECT_EQ(eventsAfter({}, "/events?after=0", 3), "1:record 2:record 3:record ");
  EXPECT_EQ(eventsAfter({{"Last-Event-ID", "2"}}, "/events?after=0", 1), "3:record ");
  EXPECT_EQ(eventsAfter({{"Last-Event-ID", "77"}}, "/events", 1), "1:record ");
}

TEST_F(CollectorTest, EventStreamSendsNewRecordsAndResets) {
  post(testRecord("e"));
  std::promise<void> following;
  std::promise<void> recordSeen;
  std::string seen;
  std::thread follower([&] {
    EventParser parser;
    bool first = true;
    client().Get("/events", [&](const char* bytes, std::size_t size) {
      if (std::exchange(first, false)) {
        following.set_value();
      }
      parser.feed({bytes, size}, [&](const ServerEvent& event) {
        seen += event.name + " ";
        if (event.name == "record") {
          recordSeen.set_value();
        }
      });
      return !seen.ends_with("reset ");
    });
  });
  following.get_future().wait();
  post(testRecord("s"), "s");
  recordSeen.get_future().wait();
  client().Post("/reset");
  follower.join();
  EXPECT_EQ(seen, "record reset ");
}

TEST_F(CollectorTest, StoresRecordsOfManyConnections) {
  std::vector<std::thread> senders;
  for (int sender = 0; sender < 8; ++sender) {
    senders.emplace_back([&, sender] {
      httplib::Client connection = client();
      for (int i = 0; i < 100; ++i) {
        const std::string id = "AbCdEfGhIjKlMnOp" + std::to_string(100000 + sender * 1000 + i);
        connection.Post("/collect", {{"t", "e"}, {"v", kTestVersion}}, testRecord("e", id), "application/json");
      }
    });
  }
  for (std::thread& sender : senders) {
    sender.join();
  }
  EXPECT_EQ(count("good"), 800);
  EXPECT_EQ(count("duplicates"), 0);
}

TEST_F(CollectorTest, StoresTheRecordsOfAnEndedProgram) {
  for (int i = 0; i < 20; ++i) {
    kesu::testing::sendRaw(server_.port, "POST /collect HTTP/1.1\r\n" + hostHeader() + "Content-Length: 2\r\n\r\n{}");
  }
  services_->settle();
  services_->stop();
  EXPECT_EQ(sum(services_->store().counts()).total(), 20);
}

TEST_F(CollectorTest, TriesTheNextPortUnlessOneWasNamed) {
  std::string error;
  Services::Options taken;
  taken.port = server_.port;
  EXPECT_EQ(Services::start(taken, error), nullptr);
  EXPECT_NE(error.find("is taken"), std::string::npos) << error;
  const auto first = Services::start({}, error);
  const auto second = Services::start({}, error);
  ASSERT_TRUE(first && second) << error;
  EXPECT_NE(first->url(), second->url());
}

}  // namespace
}  // namespace kesu::dev
