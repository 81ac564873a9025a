#include "platform/linux/http/HttpOriginQueue.h"

#include <gtest/gtest.h>

namespace kesu {
namespace {

const HttpOrigin kA{false, "a", 80};
const HttpOrigin kB{false, "b", 80};

class HttpOriginQueueTest : public ::testing::Test {
 protected:
  void add(const HttpOrigin& origin, int count, bool first = false) {
    for (int i = 0; i < count; ++i) {
      auto job = std::make_unique<HttpJob>();
      job->origin = origin;
      job->request.url = origin.host + std::to_string(++number_);
      first ? queue_.addFirst(std::move(job)) : queue_.add(std::move(job));
    }
  }
  std::vector<std::string> startAll() {
    std::vector<std::string> started;
    while (const auto job = queue_.startNext()) {
      started.push_back(job->request.url);
    }
    return started;
  }

  HttpOriginQueue queue_{2, 4};

 private:
  int number_ = 0;
};

using Names = std::vector<std::string>;

TEST_F(HttpOriginQueueTest, LimitsEachOriginByItself) {
  add(kA, 3);
  add(kB, 1);
  EXPECT_EQ(startAll(), (Names{"a1", "a2", "b4"}));
  queue_.ended(kA);
  EXPECT_EQ(startAll(), (Names{"a3"}));
  EXPECT_FALSE(queue_.hasWaiting());
}

TEST_F(HttpOriginQueueTest, TellsForWhichUrlMoreCouldOnlyWait) {
  add(kA, 2);
  startAll();
  EXPECT_EQ(queue_.blockedUrl(), "") << "the origin is full, but nothing waits";
  add(kA, 1);
  EXPECT_EQ(queue_.blockedUrl(), "a3");
  queue_.ended(kA);
  EXPECT_EQ(queue_.blockedUrl(), "") << "it may start";
}

TEST_F(HttpOriginQueueTest, RepeatedHopsGoFirst) {
  add(kA, 1);
  add(kA, 1, true);
  EXPECT_EQ(startAll(), (Names{"a2", "a1"}));
}

TEST_F(HttpOriginQueueTest, StartsMoreOverOneSharedConnection) {
  queue_.setMultiplexed(kA, true);
  add(kA, 5);
  EXPECT_EQ(startAll().size(), 4U);
  queue_.setMultiplexed(kA, false);
  queue_.ended(kA);
  EXPECT_TRUE(startAll().empty());
}

TEST_F(HttpOriginQueueTest, GivesBackWhatWaits) {
  add(kA, 4);
  add(kB, 3);
  startAll();
  EXPECT_EQ(queue_.takeWaiting(kA).size(), 2U);
  EXPECT_EQ(queue_.takeWaiting(kA).size(), 0U);
  EXPECT_EQ(queue_.takeAllWaiting().size(), 1U);
  EXPECT_FALSE(queue_.hasWaiting());
}

}  // namespace
}  // namespace kesu
