#include "platform/linux/http/HttpEngine.h"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"

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

/// Accepts connections and answers each with the beginning of a TLS handshake that never ends.
class DrippingHandshake {
 public:
  DrippingHandshake() : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(listener_, generic, size), 0);
    EXPECT_EQ(::listen(listener_, 16), 0);
    EXPECT_EQ(::getsockname(listener_, generic, &size), 0);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { drip(); });
  }
  ~DrippingHandshake() {
    stopping_ = true;
    thread_.join();
    ::close(listener_);
  }

  DrippingHandshake(const DrippingHandshake&) = delete;
  DrippingHandshake& operator=(const DrippingHandshake&) = delete;

  std::string url() const { return "https://127.0.0.1:" + std::to_string(port_) + "/"; }

 private:
  void drip() {
    std::vector<int> accepted;
    while (!stopping_) {
      pollfd wanted{listener_, POLLIN, 0};
      if (::poll(&wanted, 1, 10) == 1) {
        accepted.push_back(::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
        ::send(accepted.back(), "\x16\x03\x03\x40\x00\x02\x00\x3f\xfc", 9, MSG_NOSIGNAL);
      }
      for (const int socket : accepted) {
        ::send(socket, "", 1, MSG_NOSIGNAL);
      }
    }
    for (const int socket : accepted) {
      ::close(socket);
    }
  }

  const int listener_;
  int port_ = 0;
  std::atomic<bool> stopping_{false};
  std::thread thread_;
};

TEST_F(HttpEngineTest, AHandshakeThatDripsEndsWithTheConnectTimeoutOrTheDeadline) {
  const DrippingHandshake dripping;
  LinuxHttpClientOptions options;
  options.connectTimeoutSeconds = 0.4;
  LinuxHttpClient client(loop_, options);
  HttpExchange exchange(client, loop_);
  exchange.send(post(dripping.url(), 0.1));
  exchange.send(post(dripping.url(), 100));
  exchange.send(post(dripping.url(), 100));
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.reply(0).error, HttpError::TimedOut);
  EXPECT_EQ(exchange.reply(1).error, HttpError::CannotConnect);
  EXPECT_EQ(exchange.reply(2).error, HttpError::CannotConnect);
}

}  // namespace
}  // namespace kesu
