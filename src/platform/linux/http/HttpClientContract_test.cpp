#include <gtest/gtest.h>

#include "platform/linux/base/LinuxMainLoop.h"
#include "platform/linux/http/LinuxHttpClient.h"
#include "testing/FakeHttpClient.h"
#include "testing/HttpExchange.h"
#include "testing/LoopbackServer.h"

namespace kesu {
namespace {

using testing::Fault;
using testing::HttpExchange;
using testing::LoopbackServer;

/// A client and somebody who answers it: a server, or the test itself.
class ContractHarness {
 public:
  virtual ~ContractHarness() = default;
  virtual HttpClient& client() = 0;
  virtual HttpRequest answered() = 0;  ///< A request that is answered with status 404 and "hello".
  virtual HttpRequest neverAnswered() = 0;
  virtual void letAnswersCome() {}

  LinuxMainLoop loop;
};

class LinuxHarness : public ContractHarness {
 public:
  LinuxHarness() {
    server_.onPath("/answered", Fault::reply(404, "hello"));
    server_.onPath("/never", Fault::hang());
  }
  HttpClient& client() override { return client_; }
  HttpRequest answered() override { return HttpExchange::post(server_.url("/answered")); }
  HttpRequest neverAnswered() override { return HttpExchange::post(server_.url("/never")); }

 private:
  LoopbackServer server_;
  LinuxHttpClient client_{loop};
};

class FakeHarness : public ContractHarness {
 public:
  HttpClient& client() override { return client_; }
  HttpRequest answered() override { return HttpExchange::post("http://h/answered"); }
  HttpRequest neverAnswered() override { return HttpExchange::post("http://h/never"); }
  void letAnswersCome() override {
    for (std::size_t index = 0; index < client_.requestCount(); ++index) {
      if (client_.request(index).url == answered().url) {
        client_.answer(index, 404, "hello");
      }
    }
  }

 private:
  testing::FakeHttpClient client_{loop};
};

using MakeHarness = std::unique_ptr<ContractHarness> (*)();

class HttpClientContract : public ::testing::TestWithParam<std::pair<const char*, MakeHarness>> {
 protected:
  std::unique_ptr<ContractHarness> harness_ = GetParam().second();
  HttpClient& client_ = harness_->client();
  MainLoop& loop_ = harness_->loop;
  HttpExchange exchange_{client_, loop_};
};

TEST_P(HttpClientContract, CompletesEachRequestOnceOnTheMainLoop) {
  for (int i = 0; i < 20; ++i) {
    exchange_.send(harness_->answered());
  }
  EXPECT_EQ(exchange_.completed(), 0U);
  EXPECT_EQ(client_.pendingCount(), 20U);
  harness_->letAnswersCome();
  ASSERT_TRUE(exchange_.awaitAll());
  EXPECT_TRUE(exchange_.eachCompletedOnce());
  EXPECT_EQ(client_.pendingCount(), 0U);
  EXPECT_EQ(exchange_.reply(19).status, 404);
  EXPECT_EQ(exchange_.reply(19).body, "hello");
  EXPECT_EQ(exchange_.reply(19).error, HttpError::None);
  EXPECT_EQ(exchange_.reply(19).errorText, "");
}

TEST_P(HttpClientContract, CompletionMaySendAgain) {
  HttpReply second;
  client_.send(harness_->answered(), [&](HttpReply) { exchange_.send(harness_->answered()); });
  harness_->letAnswersCome();
  while (exchange_.completed() == 0) {
    loop_.pump();
    harness_->letAnswersCome();
  }
  EXPECT_EQ(exchange_.reply(0).status, 404);
}

TEST_P(HttpClientContract, ShutdownHandsEveryCompletionToTheMainLoop) {
  for (int i = 0; i < 20; ++i) {
    exchange_.send(harness_->neverAnswered());
  }
  client_.shutdown(0.01);
  EXPECT_EQ(exchange_.completed(), 0U);
  EXPECT_TRUE(loop_.drain(20));
  EXPECT_TRUE(exchange_.eachCompletedOnce());
  EXPECT_EQ(exchange_.count(HttpError::Cancelled), 20U);
  EXPECT_EQ(exchange_.reply(0).status, 0);
  EXPECT_EQ(exchange_.reply(0).body, std::nullopt);
  EXPECT_NE(exchange_.reply(0).errorText, "");
  EXPECT_EQ(client_.pendingCount(), 0U);
}

TEST_P(HttpClientContract, CancelsWhatIsSentAfterShutdown) {
  client_.shutdown(0);
  client_.shutdown(0);
  exchange_.send(harness_->answered());
  EXPECT_EQ(exchange_.completed(), 0U);
  EXPECT_TRUE(loop_.drain(20));
  EXPECT_EQ(exchange_.count(HttpError::Cancelled), 1U);
  EXPECT_TRUE(exchange_.eachCompletedOnce());
}

INSTANTIATE_TEST_SUITE_P(
    All, HttpClientContract,
    ::testing::Values(std::pair<const char*, MakeHarness>("Linux",
                                                          []() -> std::unique_ptr<ContractHarness> {
                                                            return std::make_unique<LinuxHarness>();
                                                          }),
                      std::pair<const char*, MakeHarness>("Fake",
                                                          []() -> std::unique_ptr<ContractHarness> {
                                                            return std::make_unique<FakeHarness>();
                                                          })),
    [](const auto& test) { return test.param.first; });

}  // namespace
}  // namespace kesu
