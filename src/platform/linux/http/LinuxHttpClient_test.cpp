#include "platform/linux/http/LinuxHttpClient.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "platform/linux/base/LinuxMainLoop.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"

#if defined(__has_feature)
#if __has_feature(undefined_behavior_sanitizer)
#define KESU_CHECKS_OBJECTS
#endif
#endif

namespace kesu {
namespace {

using testing::Fault;
using testing::HttpExchange;
using testing::LoopbackServer;
using testing::ServedRequest;

/// A client whose waits are short, a server, and whatever the observer was told.
class LinuxHttpClientTest : public ::testing::Test {
 protected:
  static LinuxHttpClientOptions options(double idleTimeoutSeconds) {
    LinuxHttpClientOptions made;
    made.idleTimeoutSeconds = idleTimeoutSeconds;
    return made;
  }

  explicit LinuxHttpClientTest(double idleTimeoutSeconds = 30) : client_(loop_, options(idleTimeoutSeconds)) {
    client_.setConnectObserver([this](const std::string& host, int port, bool connected) {
      attempts_.push_back(host + ":" + std::to_string(port) + (connected ? " up" : " down"));
    });
  }

  HttpRequest get(const std::string& path = "/") { return HttpExchange::get(server_.url(path)); }
  HttpRequest post(const std::string& path = "/", std::string body = "{}") {
    return HttpExchange::post(server_.url(path), std::move(body));
  }
  std::string authority() const { return "127.0.0.1:" + std::to_string(server_.port()); }

  void expectError(const HttpReply& reply, HttpError error, int status) {
    EXPECT_EQ(reply.error, error) << reply.errorText;
    EXPECT_EQ(reply.status, status);
    EXPECT_EQ(reply.body, std::nullopt);
    EXPECT_NE(reply.errorText, "");
  }

  LoopbackServer server_;
  LinuxMainLoop loop_;
  LinuxHttpClient client_;
  HttpExchange exchange_{client_, loop_};
  std::vector<std::string> attempts_;
};

class ImpatientHttpClientTest : public LinuxHttpClientTest {
 protected:
  ImpatientHttpClientTest() : LinuxHttpClientTest(0.4) {}
};

// 100,000 letters "a", compressed to 133 bytes.
std::string compressedLetters() {
  const char head[] = "\x1f\x8b\x08\0\0\0\0\0\x02\x03\xed\xc1\x31\x01\0\0\0\xc2\xa0\xac\xeb\x5f\xc2\x1a\x1e\x40\x01";
  const char tail[] = "\xaf\x06\x87\xfa\xe2\x1b\xa0\x86\x01\0";
  return std::string(head, sizeof head - 1) + std::string(96, '\0') + std::string(tail, sizeof tail - 1);
}

Fault gzipReply(std::string body) {
  Fault fault = Fault::reply(200, std::move(body));
  fault.headers.emplace_back("Content-Encoding", "gzip");
  return fault;
}

TEST_F(LinuxHttpClientTest, RepliesOfEveryStatusAreComplete) {
  for (const int status : {200, 202, 300, 301, 400, 403, 404, 429, 500, 503}) {
    server_.setDefault(Fault::reply(status, "text"));
    const HttpReply reply = exchange_.fetch(post());
    EXPECT_EQ(reply.status, status);
    EXPECT_EQ(reply.body, "text") << status;
    EXPECT_EQ(reply.error, HttpError::None) << status;
  }
  server_.setDefault(Fault::reply(204));
  EXPECT_EQ(exchange_.fetch(post()).body, "");
  EXPECT_EQ(server_.connectionCount(), 1U);
  EXPECT_EQ(attempts_, std::vector<std::string>(11, authority() + " up"));
}

TEST_F(ImpatientHttpClientTest, BrokenRepliesKeepTheirStatus) {
  struct Case {
    const char* name;
    Fault fault;
    HttpError error;
    int status;
  };
  const Case cases[] = {
      {"reset", Fault::reset(), HttpError::ConnectionLost, 0},
      {"closed without a word", Fault::raw(""), HttpError::ConnectionLost, 0},
      {"no HTTP", Fault::raw("220 ready\r\n"), HttpError::ConnectionLost, 0},
      {"interim reply only", Fault::raw("HTTP/1.1 103 Early\r\n\r\n"), HttpError::ConnectionLost, 0},
      {"cut body", Fault::cutBody(100, "half"), HttpError::ConnectionLost, 200},
      {"bad gzip", Fault::badGzip(), HttpError::ConnectionLost, 200},
      {"too long", Fault::endless(100U << 20U), HttpError::TooLarge, 200},
      {"bomb", gzipReply(compressedLetters()), HttpError::TooLarge, 200},
      {"hang", Fault::hang(), HttpError::TimedOut, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    server_.setDefault(c.fault);
    HttpRequest request = post();
    request.headers = {{"Accept-Encoding", "gzip"}};
    request.replyLimit = 99'999;
    expectError(exchange_.fetch(std::move(request)), c.error, c.status);
  }
  EXPECT_EQ(attempts_, std::vector<std::string>(std::size(cases), authority() + " up"));
}

TEST_F(LinuxHttpClientTest, BreaksOffWhenTheServerResetsBeforeReading) {
  server_.setResetOnAccept(true);
  expectError(exchange_.fetch(post()), HttpError::ConnectionLost, 0);
}

TEST_F(LinuxHttpClientTest, DecodesGzipOnlyWhereItWasOffered) {
  server_.setDefault(gzipReply(compressedLetters()));
  EXPECT_EQ(exchange_.fetch(get()).body, compressedLetters());
  HttpRequest offering = get();
  offering.headers = {{"accept-encoding", "gzip"}};
  EXPECT_EQ(exchange_.fetch(offering).body, std::string(100'000, 'a'));
}

TEST_F(LinuxHttpClientTest, UnreachableHostsHaveDifferentErrors) {
  server_.stop();
  expectError(exchange_.fetch(post()), HttpError::CannotConnect, 0);
  expectError(exchange_.fetch(HttpExchange::get("http://nowhere.invalid/")), HttpError::CannotResolve, 0);
  expectError(exchange_.fetch(HttpExchange::get("file:///etc/passwd")), HttpError::BadUrl, 0);
  expectError(exchange_.fetch(HttpExchange::get("http://h/\r\nInjected: 1")), HttpError::BadUrl, 0);
  EXPECT_EQ(attempts_, (std::vector<std::string>{authority() + " down", "nowhere.invalid:80 down"}));
}

TEST_F(LinuxHttpClientTest, ARestartedServerIsUsedAgain) {
  EXPECT_EQ(exchange_.fetch(post()).status, 200);
  server_.stop();
  EXPECT_EQ(exchange_.fetch(post()).error, HttpError::CannotConnect);
  server_.start();
  EXPECT_EQ(exchange_.fetch(post()).status, 200);
  EXPECT_EQ(attempts_, (std::vector<std::string>{authority() + " up", authority() + " down", authority() + " up"}));
}

TEST_F(LinuxHttpClientTest, WritesExactlyTheseBytes) {
  HttpRequest request = post("/c?a=b", "abc");
  request.headers = {{"b", "1"}, {"Content-Length", "77"}, {"a", "2"}, {"t", ""}, {"v", "x\r\nEvil: 1"}};
  ASSERT_EQ(exchange_.fetch(request).status, 200);
  request.headers = {{"v", "1"}, {"Accept-Encoding", "gzip"}, {"v", "2"}, {"Content-Type", "application/json"}};
  ASSERT_EQ(exchange_.fetch(request).status, 200);
  ASSERT_EQ(exchange_.fetch(get("/g#fragment")).status, 200);
  const std::string host = "Host: " + authority() + "\r\n";
  const std::vector<ServedRequest> served = server_.requests();
  EXPECT_EQ(served[0].head,
            "POST /c?a=b HTTP/1.1\r\n" + host + "b: 1\r\nContent-Length: 3\r\na: 2\r\nt:\r\nv: xEvil: 1\r\n\r\n");
  EXPECT_EQ(served[0].body, "abc");
  EXPECT_EQ(served[1].head,
            "POST /c?a=b HTTP/1.1\r\n" + host +
                "v: 1\r\nAccept-Encoding: gzip\r\nv: 2\r\nContent-Type: application/json\r\nContent-Length: 3\r\n\r\n");
  EXPECT_EQ(served[2].head, "GET /g HTTP/1.1\r\n" + host + "\r\n");
}

TEST_F(LinuxHttpClientTest, OneHandleServesEveryMethod) {
  struct Case {
    const char* method;
    const char* body;
    const char* length;
  };
  const Case cases[] = {{"POST", "a", "1"}, {"GET", "", ""},      {"PUT", "", "0"},  {"HEAD", "dropped", ""},
                        {"POST", "", "0"},  {"DELETE", "", ""},   {"GET", "x", "1"}, {"PATCH", "xy", "2"},
                        {"GET", "", ""},    {"POST", "last", "4"}};
  server_.setDefault(Fault::reply(200, "reply"));
  for (const Case& c : cases) {
    HttpRequest request = post("/", c.body);
    request.method = c.method;
    EXPECT_EQ(exchange_.fetch(request).body, request.method == "HEAD" ? "" : "reply") << c.method;
    const ServedRequest served = server_.requests().back();
    EXPECT_EQ(served.method, c.method);
    EXPECT_EQ(served.header("Content-Length"), c.length) << c.method;
    EXPECT_EQ(served.body, request.method == "HEAD" ? "" : c.body);
  }
}

TEST_F(LinuxHttpClientTest, LongBodiesArriveWhole) {
  std::string body(3U << 20U, '\0');
  for (std::size_t index = 0; index < body.size(); ++index) {
    body[index] = static_cast<char>(index * 31 >> 8U);
  }
  EXPECT_EQ(exchange_.fetch(post("/", body)).status, 200);
  EXPECT_TRUE(server_.requests().front().body == body);
}

TEST_F(LinuxHttpClientTest, IgnoresProxiesOfTheEnvironmentAndCredentialsOfUrls) {
  LoopbackServer proxy;
  setenv("http_proxy", proxy.url().c_str(), 1);
  setenv("ALL_PROXY", proxy.url().c_str(), 1);
  const HttpReply reply = exchange_.fetch(HttpExchange::get("http://user:secret@" + authority() + "/"));
  unsetenv("http_proxy");
  unsetenv("ALL_PROXY");
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(proxy.connectionCount(), 0U);
  EXPECT_EQ(server_.requests().front().header("Authorization"), "");
}

TEST_F(LinuxHttpClientTest, NoBodyAndNoHeaderReachesAnotherHost) {
  LoopbackServer other;
  server_.setDefault(Fault::redirect(302, other.url("/taken")));
  expectError(exchange_.fetch(post()), HttpError::BadRedirect, 302);
  server_.setDefault(Fault::redirect(307, other.url("/taken")));
  expectError(exchange_.fetch(post()), HttpError::BadRedirect, 307);
  EXPECT_EQ(other.connectionCount(), 0U);
  HttpRequest request = get();
  request.headers = {{"Authorization", "secret"}, {"Accept", "image/*"}, {"v", "1"}};
  EXPECT_EQ(exchange_.fetch(request).status, 200);
  EXPECT_EQ(other.requests().front().head,
            "GET /taken HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(other.port()) + "\r\nAccept: image/*\r\n\r\n");
}

TEST_F(LinuxHttpClientTest, EndlessAndForeignRedirectsEnd) {
  server_.setDefault(Fault::redirect(302, "/again"));
  expectError(exchange_.fetch(get()), HttpError::BadRedirect, 302);
  EXPECT_EQ(server_.requestCount(), 17U);
  server_.setDefault(Fault::redirect(302, "ftp://127.0.0.1/"));
  expectError(exchange_.fetch(get()), HttpError::BadRedirect, 302);
  EXPECT_EQ(attempts_.size(), 2U);
}

TEST_F(LinuxHttpClientTest, ManyRequestsShareSixConnections) {
  for (int i = 0; i < 300; ++i) {
    exchange_.send(post());
  }
  ASSERT_TRUE(exchange_.awaitAll());
  EXPECT_EQ(exchange_.count(HttpError::None), 300U);
  EXPECT_LE(server_.connectionCount(), 6U);
  EXPECT_EQ(attempts_.size(), 300U);
}

TEST_F(LinuxHttpClientTest, RefusingHostFailsItsWholeQueueInOrder) {
  server_.stop();
  for (int i = 0; i < 2'000; ++i) {
    exchange_.send(post());
  }
  ASSERT_TRUE(exchange_.awaitAll());
  EXPECT_EQ(exchange_.count(HttpError::CannotConnect), 2'000U);
  EXPECT_TRUE(exchange_.eachCompletedOnce());
  EXPECT_TRUE(exchange_.inOrder());
  EXPECT_LT(attempts_.size(), 100U);
}

TEST_F(ImpatientHttpClientTest, ASilentHostFailsItsQueueAndDelaysNoOther) {
  LoopbackServer silent;
  silent.setDefault(Fault::hang());
  HttpExchange stuck(client_, loop_);
  for (int i = 0; i < 200; ++i) {
    stuck.send(HttpExchange::post(silent.url()));
  }
  ASSERT_TRUE(silent.waitForRequests(6));
  EXPECT_EQ(exchange_.fetch(post()).status, 200);
  ASSERT_TRUE(stuck.awaitAll());
  EXPECT_EQ(stuck.count(HttpError::TimedOut), 200U);
  EXPECT_LE(silent.requestCount(), 12U);
}

TEST(SlowHttpServer, WaitingInTheQueueIsNeitherIdlingNorAging) {
  LoopbackServer server;
  Fault slow = Fault::reply(200);
  slow.delay = std::chrono::milliseconds(200);
  server.setDefault(slow);
  LinuxMainLoop loop;
  LinuxHttpClientOptions options;
  options.idleTimeoutSeconds = 1;
  options.maxConnectionsPerHost = 1;
  LinuxHttpClient client(loop, options);
  HttpExchange exchange(client, loop);
  for (int i = 0; i < 8; ++i) {
    HttpRequest request = HttpExchange::post(server.url());
    request.deadlineSeconds = 1;
    exchange.send(std::move(request));
  }
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.count(HttpError::None), 8U);
  EXPECT_TRUE(exchange.inOrder());
}

TEST_F(LinuxHttpClientTest, ThreadsMaySendAtTheSameTime) {
  std::atomic<int> completed{0};
  std::vector<std::thread> senders;
  for (int i = 0; i < 4; ++i) {
    senders.emplace_back([&] {
      for (int n = 0; n < 100; ++n) {
        client_.send(post(), [&](HttpReply reply) { completed += reply.status == 200 ? 1 : 0; });
      }
    });
  }
  for (std::thread& sender : senders) {
    sender.join();
  }
  while (client_.pendingCount() > 0) {
    loop_.pump();
  }
  EXPECT_EQ(completed, 400);
  EXPECT_EQ(server_.requestCount(), 400U);
}

TEST_F(LinuxHttpClientTest, ShutdownWaitsForRepliesOnTheirWay) {
  Fault slow = Fault::reply(200, "late");
  slow.delay = std::chrono::milliseconds(100);
  server_.setDefault(slow);
  exchange_.send(post());
  client_.shutdown(30);
  EXPECT_TRUE(loop_.drain(20));
  EXPECT_EQ(exchange_.reply(0).body, "late");
}

TEST_F(LinuxHttpClientTest, DestructionCompletesWhatIsLeft) {
  server_.setDefault(Fault::hang());
  auto shortLived = std::make_unique<LinuxHttpClient>(loop_);
  HttpExchange exchange(*shortLived, loop_);
  exchange.send(post());
  shortLived.reset();
  EXPECT_TRUE(loop_.drain(20));
  EXPECT_EQ(exchange.count(HttpError::Cancelled), 1U);
}

std::ptrdiff_t threadCount() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
}

TEST(IdleHttpClient, HasNoThreadBeforeTheFirstRequest) {
  const std::ptrdiff_t before = threadCount();
  LinuxMainLoop loop;
  LinuxHttpClient client(loop);
  client.setConnectObserver([](const std::string&, int, bool) {});
  EXPECT_EQ(client.pendingCount(), 0U);
  EXPECT_EQ(threadCount(), before);
}

TEST_F(LinuxHttpClientTest, StartedProgramsInheritNoConnection) {
  ASSERT_EQ(exchange_.fetch(post()).status, 200);
  int found = 0;
  for (int fd = 0; fd < 1024; ++fd) {
    sockaddr_in peer{};
    socklen_t size = sizeof peer;
    if (getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &size) == 0 && ntohs(peer.sin_port) == server_.port()) {
      ++found;
      EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    }
  }
  EXPECT_GT(found, 0);
}

// Not with the sanitizer that needs descriptors itself.
#ifndef KESU_CHECKS_OBJECTS
TEST_F(LinuxHttpClientTest, WorksAfterAStartWithoutDescriptors) {
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
  const int next = dup(STDIN_FILENO);
  ASSERT_GE(next, 0);
  close(next);
  const rlimit full{static_cast<rlim_t>(next), usual.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &full), 0);
  EXPECT_EQ(exchange_.fetch(post()).status, 0);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  const HttpReply reply = exchange_.fetch(post());
  EXPECT_EQ(reply.status, 200) << reply.errorText;
}
#endif

TEST_F(LinuxHttpClientTest, ForkedChildLeavesTheClientAlone) {
  auto shared = std::make_unique<LinuxHttpClient>(loop_);
  HttpExchange exchange(*shared, loop_);
  ASSERT_EQ(exchange.fetch(post()).status, 200);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    bool completed = false;
    shared->send(post(), [&](HttpReply) { completed = true; });
    shared->sendInBackground(post(), [&](HttpReply) { completed = true; });
    shared->setConnectObserver(nullptr);
    shared->shutdown(5);
    const bool touched = completed || shared->pendingCount() != 0;
    shared.reset();
    _exit(touched ? 1 : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(exchange.fetch(post()).status, 200);
  EXPECT_EQ(server_.requestCount(), 2U);
}

}  // namespace
}  // namespace kesu
