#include "platform/linux/http/HttpExit.h"

#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

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

// A host that returns from main() while a server hangs: its handler runs after the network was stopped and finds every
// completion waiting in the main loop, and so does OpenSSL's own clean-up, which would crash a running network. Leaks
// on purpose, as process-wide objects do.
[[noreturn]] void exitWithRequestsPending(LoopbackServer* server, const testing::TestCertificates* certificates) {
  static LoopbackServer* const kept = server;
  static auto* const loop = new LinuxMainLoop;
  LinuxHttpClientOptions options;
  options.caFile = certificates != nullptr ? certificates->caFile() : "";
  static auto* const client = new LinuxHttpClient(*loop, options);
  static auto* const exchange = new HttpExchange(*client, *loop);
  std::atexit([] {
    loop->drain(20);
    std::fprintf(stderr, "cancelled %zu", exchange->count(HttpError::Cancelled));
    kept->stop();
  });
  server->setDefault(Fault::hang());
  for (int i = 0; i < 50; ++i) {
    exchange->send(HttpExchange::post(server->url()));
  }
  server->waitForRequests(6);
  if (certificates != nullptr) {
    std::filesystem::remove_all(certificates->directory());  // No destructor of the test's locals runs.
  }
  OPENSSL_atexit([] { std::fputs(loop->nextDue() == 0.0 ? "stopped, " : "running, ", stderr); });
  std::exit(0);
}

TEST(HttpExitDeathTest, NetworkStopsBeforeOpenSslAndCompletesEveryRequest) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(exitWithRequestsPending(new LoopbackServer, nullptr), ::testing::ExitedWithCode(0),
              "stopped, cancelled 50");
}

TEST(HttpExitDeathTest, SecureConnectionsCloseOrderly) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const testing::TestCertificates ours;
  const loopback::Certificate& shown = ours.server();
  EXPECT_EXIT(exitWithRequestsPending(new LoopbackServer(shown), &ours), ::testing::ExitedWithCode(0), "cancelled 50");
}

}  // namespace
}  // namespace kesu
