#include "platform/linux/http/HttpTransfer.h"

#include <gtest/gtest.h>

#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::HttpExchange;
using testing::LoopbackServer;

class HttpTransferTest : public ::testing::Test {
 protected:
  LoopbackServer server_;
  LinuxMainLoop loop_;
  LinuxHttpClient client_{loop_};
  HttpExchange exchange_{client_, loop_};
};

TEST_F(HttpTransferTest, OneHandleServesEveryUrl) {
  LoopbackServer other;
  const LoopbackServer* const servers[] = {&server_, &other};
  server_.onPath("/moved", Fault::redirect(307, "/there/../here?x=%41#f"));
  for (int round = 0; round < 3; ++round) {
    for (int path = 0; path < 20; ++path) {
      const std::string target = "/p" + std::to_string(path) + "?q=" + std::to_string(path);
      for (const LoopbackServer* const server : servers) {
        EXPECT_EQ(exchange_.fetch(HttpExchange::post(server->url(target + "#f"), target)).status, 200);
      }
      EXPECT_EQ(server_.requests().back().target, target);
      EXPECT_EQ(other.requests().back().target, target);
      EXPECT_EQ(other.requests().back().body, target);
    }
    EXPECT_EQ(exchange_.fetch(HttpExchange::get(server_.url("/moved"))).status, 200);
    EXPECT_EQ(server_.requests().back().target, "/here?x=%41");
  }
}

Fault longReply(int status) {
  return Fault::reply(status, std::string(std::size_t{1} << 20U, 'x'));
}

TEST_F(HttpTransferTest, WhoIgnoresTheBodyGetsTheStatusOfALongReply) {
  struct Case {
    const char* name;
    Fault fault;
    int status;
    HttpError error;
    bool hasBody;
  };
  const Case cases[] = {
      {"short", Fault::reply(200, "all of it"), 200, HttpError::None, true},
      {"endless", Fault::endless(std::uint64_t{1} << 40U), 200, HttpError::None, true},
      {"long refusal", longReply(500), 500, HttpError::None, true},
      {"cut by the server", Fault::cutBody(100, "half"), 200, HttpError::ConnectionLost, false},
      {"no gzip", Fault::badGzip(), 200, HttpError::ConnectionLost, false},
  };
  for (const Case& c : cases) {
    server_.setDefault(c.fault);
    HttpRequest request = HttpExchange::post(server_.url());
    request.headers = {{"Accept-Encoding", "gzip"}};
    request.ignoresBody = true;
    const HttpReply reply = exchange_.fetch(std::move(request));
    EXPECT_EQ(reply.status, c.status) << c.name;
    EXPECT_EQ(reply.error, c.error) << c.name << reply.errorText;
    EXPECT_EQ(reply.body.has_value(), c.hasBody) << c.name;
    EXPECT_LE(reply.body.value_or("").size(), 100'000U) << c.name;
  }
  EXPECT_EQ(exchange_.reply(0).body, "all of it");
}

TEST_F(HttpTransferTest, RedirectsWithLongBodiesAreFollowedAllTheSame) {
  Fault redirect = Fault::raw("HTTP/1.1 307 Elsewhere\r\nLocation: /there\r\nContent-Length: 100000\r\n\r\n" +
                              std::string(100'000, 'x'));
  server_.onPath("/here", redirect);
  HttpRequest request = HttpExchange::post(server_.url("/here"));
  request.ignoresBody = true;
  EXPECT_EQ(exchange_.fetch(std::move(request)).status, 200);
  EXPECT_EQ(server_.requests().back().path, "/there");
  EXPECT_EQ(server_.requests().back().body, "{}");
}

TEST_F(HttpTransferTest, ARequestReachesTheServerTwiceAtMost) {
  server_.setDefault(Fault::raw(""));
  EXPECT_EQ(exchange_.fetch(HttpExchange::post(server_.url())).error, HttpError::ConnectionLost);
  EXPECT_EQ(server_.requestCount(), 1U) << "over a new connection";
  Fault slow = Fault::reply(200);
  slow.delay = std::chrono::milliseconds(100);  // Until each of them has a connection.
  server_.setDefault(slow);
  for (int i = 0; i < 6; ++i) {
    exchange_.send(HttpExchange::post(server_.url()));
  }
  ASSERT_TRUE(exchange_.awaitAll());
  ASSERT_EQ(server_.connectionCount(), 7U);
  server_.setDefault(Fault::raw(""));
  EXPECT_EQ(exchange_.fetch(HttpExchange::post(server_.url())).error, HttpError::ConnectionLost);
  EXPECT_EQ(server_.requestCount(), 9U) << "over one that was kept, and over a new one";
  EXPECT_EQ(server_.connectionCount(), 8U);
  server_.script(Fault::raw(""));
  server_.setDefault(Fault::reply(200));
  EXPECT_EQ(exchange_.fetch(HttpExchange::post(server_.url())).status, 200) << "the repetition";
  server_.script(Fault::reply(200));
  EXPECT_EQ(exchange_.fetch(HttpExchange::post(server_.url())).status, 200);
  EXPECT_EQ(server_.connectionCount(), 9U) << "later requests use kept connections again";
}

}  // namespace
}  // namespace kesu
