#include <gtest/gtest.h>
#include <kesu/delivery/ConnectionMetrics.h>

#include "foundation/SharedInstance.h"
#include "support/KesuPriorityLogger.h"
#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class MetricTest : public ::testing::Test {
 protected:
  ~MetricTest() override { resetSharedInstances(); }

  std::shared_ptr<Metric> started(const std::string& url, const std::string& body = "") {
    HttpRequest request;
    request.url = url;
    request.body = body;
    auto metric = std::make_shared<Metric>();
    metric->updateRequest(request);
    return metric;
  }

  testing::ScopedPlatform platform;
};

TEST_F(MetricTest, DescribesARequestFromStartToEnd) {
  platform.clock.set(100.9);
  const auto metric = started("https://host.example/a", "12345");
  EXPECT_EQ(metric->description(), "https://host.example/a | https | bytes in ") << "up to the first missing piece";
  metric->updateResponse(-1);
  EXPECT_EQ(metric->description(), "https://host.example/a | https | bytes in -1 | bytes out 5 | latency 100.9ms");
  metric->updateSessionForTask(7, 8);
  platform.clock.set(101.5);
  KesuPriorityLogger::sharedLogger().setLogLevel(3);
  metric->updateFinish();
  KesuPriorityLogger::sharedLogger().setLogLevel(0);
  const auto lines = platform.log.takeLines();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0].text,
            "[ConnectionMetrics:46]Connection Metric : https://host.example/a | https | bytes in 7 | bytes out 8 | "
            "latency 150ms");
}

TEST_F(MetricTest, TakesTheFirstFigureForAStartTheSecondTime) {
  platform.clock.set(100.9);
  const auto metric = started("http://host.example/");
  EXPECT_EQ(metric->bytesSent, 0);
  platform.clock.set(101.5);
  metric->updateFinish();
  metric->updateFinish();
  EXPECT_EQ(metric->latency, -4850.0) << "(101.5 - 150) * 100";
  platform.clock.set(1489579320.0);
  metric->updateFinish();
  EXPECT_EQ(metric->latency, 2147483647.0) << "clamped to 32 bits";
}

TEST_F(MetricTest, ListsEveryRegisteredMetricForEver) {
  const auto first = started("http://host.example/1");
  started("/relative?at=12:00");
  first->updateFinish();
  const auto listed = ConnectionMetrics::sharedMetrics().metricArray();
  ASSERT_EQ(listed.size(), 2U);
  EXPECT_EQ(listed[0], first);
  EXPECT_EQ(listed[1]->description(), "/relative?at=12:00 | ");
  EXPECT_EQ(Metric().description(), "");
}

}  // namespace
}  // namespace kesu
