#include "platform/linux/http/HttpTrust.h"

#include <gtest/gtest.h>

#include "platform/ServiceLog.h"
#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"
#include "testing/TestCertificates.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::HttpExchange;
using testing::LoopbackServer;
using testing::TestCertificates;

/// Servers that show the certificates of one run.
class HttpTrustTest : public ::testing::Test {
 protected:
  HttpReply fetch(const loopback::Certificate& shown, const std::string& caFile, const std::string& systemCaFile) {
    LoopbackServer server(shown);
    server.setDefault(Fault::reply(200, "safe"));
    LinuxMainLoop loop;
    LinuxHttpClientOptions options;
    options.caFile = caFile;
    options.systemCaFile = systemCaFile;
    LinuxHttpClient client(loop, options);
    connected_ = false;
    client.setConnectObserver([this](const std::string&, int, bool connected) { connected_ = connected; });
    HttpExchange exchange(client, loop);
    const HttpReply reply = exchange.fetch(HttpExchange::post(server.url()));
    EXPECT_EQ(server.requestCount(), reply.status == 200 ? 1U : 0U);
    return reply;
  }

  const TestCertificates ours_;
  bool connected_ = false;
};

TEST_F(HttpTrustTest, TrustsTheSystemAndTheExtraAuthorityTogether) {
  const TestCertificates others;
  EXPECT_EQ(fetch(ours_.server(), ours_.caFile(), "").body, "safe");
  EXPECT_EQ(fetch(ours_.server(), ours_.caFile(), others.caFile()).body, "safe");
  EXPECT_EQ(fetch(others.server(), ours_.caFile(), others.caFile()).body, "safe");
  EXPECT_EQ(fetch(ours_.server(), ours_.caFile(), ours_.directory() + "/missing").body, "safe");
}

TEST_F(HttpTrustTest, RefusesWhatItCannotTrust) {
  const loopback::Certificate* const shown[] = {&ours_.wrongHost(), &ours_.selfSigned()};
  for (const auto* const certificate : shown) {
    const HttpReply reply = fetch(*certificate, ours_.caFile(), "");
    EXPECT_EQ(reply.error, HttpError::Tls) << reply.errorText;
    EXPECT_EQ(reply.status, 0);
    EXPECT_TRUE(connected_) << "somebody was there";
  }
  EXPECT_EQ(fetch(ours_.server(), "", "").error, HttpError::Tls);
}

TEST_F(HttpTrustTest, SaysWhenTheAuthorityCannotBeRead) {
  static std::vector<std::string> lines;
  lines.clear();
  setServiceLogHandler([](int, const std::string& text) { lines.push_back(text); });
  EXPECT_EQ(fetch(ours_.server(), ours_.directory() + "/missing", "").error, HttpError::Tls);
  setServiceLogHandler(nullptr);
  EXPECT_EQ(lines,
            std::vector<std::string>{"No certificate authority could be read from " + ours_.directory() + "/missing"});
}

TEST_F(HttpTrustTest, HostWithoutMultiplexingIsAskedOverSixConnections) {
  LoopbackServer server(ours_.server());
  server.setDefault(Fault::hang());
  LinuxMainLoop loop;
  LinuxHttpClientOptions options;
  options.caFile = ours_.caFile();
  LinuxHttpClient client(loop, options);
  HttpExchange exchange(client, loop);
  for (int i = 0; i < 20; ++i) {
    exchange.send(HttpExchange::post(server.url()));
  }
  EXPECT_TRUE(server.waitForRequests(6));
  client.shutdown(0);
  EXPECT_TRUE(loop.drain(20));
  EXPECT_EQ(exchange.count(HttpError::Cancelled), 20U);
  EXPECT_EQ(server.connectionCount(), 6U);
}

TEST_F(HttpTrustTest, UnreachableSecureHostFailsItsQueueOnce) {
  LoopbackServer plain;
  plain.setDefault(Fault::raw("not TLS"));
  plain.setResetOnAccept(true);
  LinuxMainLoop loop;
  LinuxHttpClient client(loop);
  HttpExchange exchange(client, loop);
  for (int i = 0; i < 100; ++i) {
    exchange.send(HttpExchange::post("https://127.0.0.1:" + std::to_string(plain.port()) + "/"));
  }
  ASSERT_TRUE(exchange.awaitAll());
  EXPECT_EQ(exchange.count(HttpError::Tls), 100U);
  EXPECT_LE(plain.connectionCount(), 12U);
}

}  // namespace
}  // namespace kesu
