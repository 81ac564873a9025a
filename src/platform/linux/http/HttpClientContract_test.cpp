#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"
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

/// Counts completions on whatever thread they run.
class BackgroundReplies {
 public:
  HttpClient::Completion completion() {
    return [this](const HttpReply& reply) {
      const MutexLock lock(mutex_);
      errors_.push_back(reply.error);
      changed_.notify_all();
    };
  }
  std::size_t count(HttpError error) {
    const MutexLock lock(mutex_);
    return static_cast<std::size_t>(std::count(errors_.begin(), errors_.end(), error));
  }
  bool await(std::size_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    const MutexLock lock(mutex_);
    while (errors_.size() < count && changed_.wait_until(mutex_, end) == std::cv_status::no_timeout) {
    }
    return errors_.size() == count;
  }

 private:
  Mutex mutex_;
  std::condition_variable_any changed_;
  std::vector<HttpError> errors_ KESU_GUARDED_BY(mutex_);
};

TEST_P(HttpClientContract, CompletesInTheBackgroundThoughNobodyPumps) {
  BackgroundReplies replies;
  const auto held = std::make_shared<int>();
  for (int i = 0; i < 20; ++i) {
    client_.sendInBackground(harness_->answered(),
                             [held, reply = replies.completion()](HttpReply made) { reply(std::move(made)); });
  }
  harness_->letAnswersCome();
  ASSERT_TRUE(replies.await(20));
  EXPECT_EQ(replies.count(HttpError::None), 20U);
  EXPECT_EQ(client_.pendingCount(), 0U);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (held.use_count() > 1 && std::chrono::steady_clock::now() < end) {
    std::this_thread::yield();
  }
  EXPECT_EQ(held.use_count(), 1) << "completions are destroyed though nobody sends again";
}

TEST_P(HttpClientContract, CompletionInTheBackgroundMaySendAgain) {
  BackgroundReplies replies;
  client_.sendInBackground(harness_->answered(), [&](const HttpReply&) {
    client_.sendInBackground(harness_->answered(), replies.completion());
    exchange_.send(harness_->answered());
  });
  harness_->letAnswersCome();
  harness_->letAnswersCome();
  ASSERT_TRUE(replies.await(1));
  ASSERT_TRUE(exchange_.awaitAll());
  EXPECT_TRUE(exchange_.eachCompletedOnce());
}

TEST_P(HttpClientContract, ShutdownRunsTheCompletionsInTheBackground) {
  BackgroundReplies replies;
  for (int i = 0; i < 20; ++i) {
    client_.sendInBackground(harness_->neverAnswered(), replies.completion());
  }
  exchange_.send(harness_->neverAnswered());
  EXPECT_EQ(client_.pendingCount(), 21U);
  client_.shutdown(0.01);
  EXPECT_EQ(replies.count(HttpError::Cancelled), 20U);
  EXPECT_EQ(exchange_.completed(), 0U) << "of send(), waits for the main loop";
  client_.sendInBackground(harness_->answered(), replies.completion());
  EXPECT_EQ(replies.count(HttpError::Cancelled), 20U) << "never inside the call";
  EXPECT_TRUE(loop_.drain(20));
  EXPECT_EQ(replies.count(HttpError::Cancelled), 21U);
  EXPECT_EQ(client_.pendingCount(), 0U);
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
