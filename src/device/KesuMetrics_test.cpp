#include "device/KesuMetrics.h"

#include <gtest/gtest.h>

#include "testing/ScopedPlatform.h"

namespace kesu {
namespace {

class MetricsTest : public ::testing::Test {
 protected:
  testing::ScopedPlatform platform;
  DeploymentSettings settings{platform.bundle};
  KesuMetrics metrics{platform.device, platform.reachability, platform.locale, settings};
  KesuHardware hardware{platform.device, platform.reachability};
};

TEST_F(MetricsTest, AnswersWithTextsReadyForARecord) {
  EXPECT_EQ(metrics.product(), "x86_64");
  EXPECT_EQ(metrics.uptime(), std::to_string(1489500000LL * 1000 + 250000));
  EXPECT_EQ(metrics.screenWidth(), "1920");
  EXPECT_EQ(metrics.screenHeight(), "1080");
  EXPECT_EQ(metrics.memorySize(), Value("2147483648"));
  EXPECT_EQ(metrics.userMemorySize(), Value("1073741824"));
  EXPECT_EQ(metrics.numberProcessors(), "4");
  EXPECT_EQ(metrics.processorSpeed(), "1800");
  EXPECT_EQ(metrics.processorBusSpeed(), std::nullopt);
  EXPECT_EQ(metrics.batteryLevel(), "unmonitored");
  EXPECT_EQ(metrics.batteryState() + metrics.orientation(), "UnknownUnknown");
  EXPECT_EQ(metrics.proximityState(), "far");
  EXPECT_EQ(metrics.brightness(), "0");
  EXPECT_EQ(metrics.getLocalIP(), "192.168.1.20");
  EXPECT_EQ(metrics.formattedDate(1489579320.0), "2017-03-15 12:02:00 +0000");
  EXPECT_EQ(metrics.carrier(), std::nullopt);
  EXPECT_EQ(metrics.carrierName(), "Simulated");
}

TEST_F(MetricsTest, FallsBackWhereTheDeviceCannotTell) {
  platform.device.memory.reset();
  platform.device.userMemory = 5'000'000'000;
  platform.device.boot.reset();
  platform.device.mainScreen.reset();
  platform.device.processorCount.reset();
  platform.device.addresses.clear();
  platform.device.machineText = "armv7";
  platform.device.processTable.reset();
  EXPECT_EQ(metrics.memorySize(), Value("0"));
  EXPECT_EQ(metrics.userMemorySize(), Value("2147483647"));
  EXPECT_EQ(metrics.uptime(), std::nullopt);
  EXPECT_EQ(metrics.screenWidth(), "0");
  EXPECT_EQ(metrics.numberProcessors(), std::nullopt);
  EXPECT_EQ(metrics.getLocalIP(), "");
  EXPECT_EQ(metrics.carrierName(), "N/A for tvOS");
  EXPECT_EQ(metrics.systemProcesses(), std::nullopt);
  EXPECT_EQ(hardware.parentPIDForProcess(7), -1);
  EXPECT_EQ(KesuMetrics::nonNil(std::nullopt), Value(Null{}));
}

TEST_F(MetricsTest, CountsClockSpeedsInWholeMegahertz) {
  const std::pair<std::optional<std::int64_t>, ProbeText> rows[] = {
      {999'999, "0"}, {0, std::nullopt}, {-5, std::nullopt}, {2'399'999'999, "2399"}, {std::nullopt, std::nullopt}};
  for (const auto& [hertz, text] : rows) {
    platform.device.processorClockHertz = hertz;
    EXPECT_EQ(metrics.processorSpeed(), text);
  }
}

TEST_F(MetricsTest, ListsProcessesLastFirst) {
  const auto processes = metrics.systemProcesses();
  ASSERT_TRUE(processes && processes->size() == 2);
  const Dictionary wanted = {{"ProcessID", "42"},
                             {"ProcessName", "tv_app"},
                             {"priority", "20"},
                             {"launchSec", "1489500030"},
                             {"processStartDate", Date{1489500030.0}},
                             {"processParentID", "1"},
                             {"processStatus", "82"},
                             {"processFlags", "0400000"}};
  EXPECT_EQ(processes->front(), Value(wanted));
  EXPECT_EQ(processes->back().dictionary()->find("processParentID")->text()[0], "-1");
}

TEST_F(MetricsTest, NamesTheNetworkClass) {
  const std::pair<std::optional<std::uint32_t>, const char*> rows[] = {
      {kFlagReachable, "w"}, {kFlagReachable | kFlagIsWwan, "w"}, {0U, "n"}, {std::nullopt, "n"}};
  for (const auto& [flags, letter] : rows) {
    platform.reachability.setFlags(flags);
    EXPECT_EQ(metrics.granularReachability(), letter);
  }
}

TEST_F(MetricsTest, ReportsTheWirelessNetwork) {
  std::string bssid = "stale";
  std::string ssid = "stale";
  metrics.currentWiFi(bssid, ssid);
  EXPECT_EQ(bssid + ssid, "");
  platform.device.wifiNetwork = WifiFacts{"00:11:22:33:44:55", "Home"};
  metrics.currentWiFi(bssid, ssid);
  EXPECT_EQ(bssid + ssid, "00:11:22:33:44:55Home");
}

TEST(HashStr, CoversAsManyBytesAsTheTextHasUnits) {
  EXPECT_EQ(hashStr("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hashStr("\u00e4"), hashStr("\xC3"));  // Two bytes, one unit: the first byte alone.
  EXPECT_EQ(hashStr(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

}  // namespace
}  // namespace kesu
