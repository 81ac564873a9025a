#include "platform/linux/http/HttpDelivery.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/linux/base/LinuxMainLoop.h"

namespace kesu {
namespace {

using Told = std::vector<std::string>;

/// The network thread and the main loop in one.
class HttpDeliveryTest : public ::testing::Test {
 protected:
  HttpDeliveryTest() {
    delivery_.setObserver([this](const std::string& host, int port, bool connected) {
      told_.push_back(host + ":" + std::to_string(port) + (connected ? " up" : " down"));
    });
  }

  void deliver(bool isInBackground, std::optional<bool> connected, const std::string& host = "a") {
    HttpJob job;
    job.origin = {false, host, 80};
    job.isInBackground = isInBackground;
    job.completion = [this](const HttpReply&) { told_.emplace_back("done"); };
    delivery_.expect();
    delivery_.deliver(job, {}, connected);
  }
  Told pumped() {
    loop_.drain(20);
    return std::exchange(told_, {});
  }

  LinuxMainLoop loop_;
  HttpDelivery delivery_{loop_};
  Told told_;
};

TEST_F(HttpDeliveryTest, ObserverComesBeforeAnOrdinaryCompletion) {
  deliver(false, true);
  deliver(false, true);
  deliver(false, std::nullopt);
  EXPECT_EQ(told_, Told());
  EXPECT_EQ(delivery_.pendingCount(), 3U);
  EXPECT_EQ(pumped(), (Told{"a:80 up", "done", "a:80 up", "done", "done"}));
  EXPECT_EQ(delivery_.pendingCount(), 0U);
}

TEST_F(HttpDeliveryTest, EveryChangeInTheBackgroundIsToldInItsOrder) {
  deliver(true, true);
  deliver(true, false);
  deliver(false, true);
  deliver(true, false, "b");
  deliver(true, false);
  EXPECT_EQ(std::exchange(told_, {}), Told(4, "done"));
  EXPECT_EQ(pumped(), (Told{"a:80 up", "a:80 down", "a:80 up", "done", "b:80 down", "a:80 down"}));
  deliver(true, false);
  deliver(true, true);
  EXPECT_EQ(pumped(), (Told{"done", "done", "a:80 down", "a:80 up"})) << "each failure, and the first success";
}

TEST_F(HttpDeliveryTest, RepetitionsInTheBackgroundCostTheMainLoopNothing) {
  for (int i = 0; i < 1'000; ++i) {
    deliver(true, false);
  }
  for (int i = 0; i < 1'000; ++i) {
    deliver(true, true);
  }
  EXPECT_EQ(std::exchange(told_, {}), Told(2'000, "done"));
  EXPECT_EQ(pumped(), (Told{"a:80 down", "a:80 up"}));
  for (int host = 0; host < 100; ++host) {
    deliver(true, true, std::to_string(host));
  }
  EXPECT_EQ(pumped().size(), 200U) << "each host is told once, though only some are remembered";
}

}  // namespace
}  // namespace kesu
