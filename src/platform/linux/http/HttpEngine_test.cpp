#include "platform/linux/http/HttpEngine.h"

#include <gtest/gtest.h>

#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"
#include "testing/RawConnection.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::HttpExchange;
using testing::LoopbackServer;

/// The time limits of requests, with a client that is as patient as its options say.
class HttpEngineTest : public ::testing::Test {
 protected:
  static HttpRequest post(const std::string& url, double deadlineSeconds) {
    HttpRequest request = HttpExchange::post(url);
    request.deadlineSeconds = deadlineSeconds;
    return request;
  }

  LoopbackServer server_;
  LinuxMainLoop loop_;
};

TEST_F(HttpEngineTest, NothingThatDripsOutlivesItsDeadline) {
  const std::string head = "HTTP/1.1 200 OK\r\n";
  struct Case {
    const char* name;
    Fault fault;
    int status;
  };
  const Case cases[] = {
      {"letters of a head", Fault::drip(head + "X: ", "x"), 200},
      {"lines of a head", Fault::drip(head, "X: y\r\n"), 200},
      {"interim replies", Fault::drip("", "HTTP/1.1 100 Continue\r\n\r\n"), 0},
      {"body", Fault::drip(head + "Content-Length: 100000000\r\n\r\n", "x"), 200},
      {"chunks", Fault::drip(head + "Transfer-Encoding: chunked\r\n\r\n", "1\r\nx\r\n"), 200},
      {"redirects", Fault::redirect(307, "/again"), 0},
  };
  LinuxHttpClient client(loop_);
  HttpExchange exchange(client, loop_);
  for (const Case& c : cases) {
    server_.setDefault(c.fault);
    if (c.fault.kind == loopback::FaultKind::Redirect) {
      Fault slow = c.fault;
      slow.delay = std::chrono::milliseconds(100);  // 17 of them would take longer.
      server_.setDefault(slow);
    }
    const HttpReply reply = exchange.fetch(post(server_.url(), 0.3));
    EXPECT_EQ(reply.error, HttpError::TimedOut) << c.name << reply.errorText;
    EXPECT_EQ(reply.status, c.status) << c.name;
    EXPECT_EQ(reply.body, std::nullopt) << c.name;
  }
}

TEST_F(HttpEngineTest, ATarpitFailsItsQueueAtTheFirstDeadline) {
  server_.setDefault(Fault::drip("", "HTTP/1.1 100 Continue\r\n\r\n"));
  LinuxHttpClientOptions options;
  options.idleTimeoutSeconds = 0.4;
  options.longestDeadlineSeconds = 0.5;
  LinuxHttpClient client(loop_, options);
  HttpExchange exchange(client, loop_);
  for (int i = 0; i < 100; ++i) {
    exchange.send(HttpExchange::post(server_.url()));
  }
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.count(HttpError::TimedOut), 100U);
  EXPECT_LE(server_.requestCount(), 12U);
}

TEST_F(HttpEngineTest, AnImpatientRequestFailsOnlyItself) {
  Fault slow = Fault::reply(200);
  slow.delay = std::chrono::milliseconds(500);
  server_.setDefault(slow);
  LinuxHttpClientOptions options;
  options.maxConnectionsPerHost = 1;
  LinuxHttpClient client(loop_, options);
  HttpExchange exchange(client, loop_);
  exchange.send(post(server_.url(), 0.1));
  exchange.send(post(server_.url(), -1));
  exchange.send(post(server_.url(), 100));
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.reply(0).error, HttpError::TimedOut);
  EXPECT_EQ(exchange.reply(1).error, HttpError::TimedOut) << "no time at all";
  EXPECT_EQ(exchange.reply(2).status, 200);
}

TEST_F(HttpEngineTest, AnEndlessHandshakeEndsWithTheConnectTimeoutOrTheDeadline) {
  const testing::SilentServer silent;
  const std::string url = "https://127.0.0.1:" + std::to_string(silent.port()) + "/";
  LinuxHttpClientOptions options;
  options.connectTimeoutSeconds = 0.4;
  LinuxHttpClient client(loop_, options);
  HttpExchange exchange(client, loop_);
  exchange.send(post(url, 0.1));
  exchange.send(post(url, 100));
  exchange.send(post(url, 100));
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.reply(0).error, HttpError::TimedOut);
  EXPECT_EQ(exchange.reply(1).error, HttpError::CannotConnect);
  EXPECT_EQ(exchange.reply(2).error, HttpError::CannotConnect);
}

}  // namespace
}  // namespace kesu
