#include "platform/linux/device/LinuxDeviceFacts.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "platform/linux/device/ProcessTable.h"
#include "platform/linux/device/SystemTexts.h"
#include "platform/linux/device/WirelessNetwork.h"
#include "testing/FakeDeviceFacts.h"
#include "testing/TemporaryDirectory.h"

namespace kesu {
namespace {

/// A tree of system files that a test writes.
class LinuxDeviceFactsTest : public ::testing::Test {
 protected:
  void write(const std::string& path, const std::string& content) {
    const std::filesystem::path file = root_.string() + path;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
  }

  void writeProcess(int id, const std::string& name, const std::string& rest) {
    write("/proc/" + std::to_string(id) + "/stat", std::to_string(id) + " (" + name + ") " + rest + "\n");
  }

  LinuxDeviceFacts device() const { return LinuxDeviceFacts(root_.string() + "/"); }

  const testing::TemporaryDirectory directory_;
  const std::filesystem::path root_ = directory_.path();
};

/// Contents that no file of the system should have.
std::vector<std::string> hostileContents() {
  return {"",
          "\n",
          ":",
          "=",
          std::string(1, '\0'),
          std::string(3'000'000, '9'),
          std::string(100'000, '\n'),
          "\xff\xfe\x80 (\xff) \xff",
          "MemTotal:\nMemAvailable: kB\nVERSION_ID=\n\nbtime \n",
          "1 () R",
          ")(",
          "x",
          "MemTotal: 99999999999999999999 kB\nMemAvailable: -1 kB\nVERSION_ID=\"\n\nbtime 12x\n0x0\n"};
}

TEST_F(LinuxDeviceFactsTest, ReadsTheSystemsFiles) {
  write("/proc/meminfo", "MemTotal:        2048000 kB\nMemFree:  1 kB\nMemAvailable:    1024 kB\n");
  write("/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "1800000\n");
  write("/proc/stat", "cpu 1 2 3\nintr " + std::string(60'000, '1') + "\nbtime 1489500000\nprocesses 5\n");
  write("/etc/os-release", "# comment\nNAME=\"Box OS\"\nVERSION_ID='4.2'\n");
  write("/etc/machine-info", "PRETTY_HOSTNAME=\"Anna\\\"s \xc3\xbc TV\"\n");
  LinuxDeviceFacts facts = device();
  EXPECT_EQ(facts.memoryBytes(), 2048000U * 1024U);
  EXPECT_EQ(facts.userMemoryBytes(), 1024 * 1024);
  EXPECT_EQ(facts.processorHertz(), 1'800'000'000);
  ASSERT_TRUE(facts.bootTime());
  EXPECT_EQ(facts.bootTime()->seconds, 1489500000);
  EXPECT_EQ(facts.systemVersion(), "4.2");
  EXPECT_EQ(facts.deviceName(), "Anna\"s \xc3\xbc TV");
}

TEST_F(LinuxDeviceFactsTest, FollowsWhatChangesAndKeepsWhatCannot) {
  write("/proc/meminfo", "MemTotal: 2 kB\nMemAvailable: 1 kB\n");
  LinuxDeviceFacts facts = device();
  EXPECT_EQ(facts.memoryBytes(), 2048U);
  EXPECT_EQ(facts.userMemoryBytes(), 1024);
  write("/proc/meminfo", "MemTotal: 4 kB\nMemAvailable: 3 kB\n");
  EXPECT_EQ(facts.memoryBytes(), 2048U);
  EXPECT_EQ(facts.userMemoryBytes(), 3072);
}

TEST_F(LinuxDeviceFactsTest, FallsBackWhereAFileIsMissing) {
  LinuxDeviceFacts facts = device();
  EXPECT_EQ(facts.memoryBytes(), std::nullopt);
  EXPECT_EQ(facts.processorHertz(), std::nullopt);
  EXPECT_FALSE(facts.bootTime());
  EXPECT_FALSE(facts.processes());
  EXPECT_EQ(facts.vendorIdentifier(), std::nullopt);
  EXPECT_FALSE(facts.screen());
  EXPECT_TRUE(facts.systemVersion()) << "the kernel's release";
  EXPECT_TRUE(facts.deviceName()) << "the host name";
  write("/proc/cpuinfo", "processor\t: 0\ncpu MHz\t\t: 2596.138\nprocessor\t: 1\ncpu MHz\t\t: 800.0\n");
  EXPECT_EQ(facts.processorHertz(), 2'596'138'000);
  write("/usr/lib/os-release", "VERSION_ID=7\n");
  EXPECT_EQ(device().systemVersion(), "7");
}

TEST_F(LinuxDeviceFactsTest, DescribesProcessesWhateverTheirNames) {
  const std::string rest = "S 1 1 1 0 -1 4194560 0 0 0 0 0 0 0 0 20 0 1 0 500 0";
  write("/proc/stat", "cpu 1\nbtime 1000\n");
  writeProcess(1, "init", "S 0 1 1 0 -1 4194560 0 0 0 0 0 0 0 0 20 0 1 0 0 0");
  writeProcess(30, "a) R 7 (b c", rest);
  writeProcess(4, "bad\xff\n", "R 30 1 1 0 -1 64 0 0 0 0 0 0 0 0 -51 0 1 0 1000 0");
  write("/proc/20/stat", "");  // Ends while it is being read.
  write("/proc/self/stat", "30 (self) " + rest);
  LinuxDeviceFacts facts = device();
  const auto processes = facts.processes();
  ASSERT_TRUE(processes && processes->size() == 3);
  EXPECT_EQ((*processes)[1].processId, 4);
  EXPECT_EQ((*processes)[1].name, "bad??");
  EXPECT_EQ((*processes)[1].priority, 0) << "a real-time priority";
  EXPECT_EQ((*processes)[1].startSeconds, 1000 + 1000 / ::sysconf(_SC_CLK_TCK));
  EXPECT_EQ((*processes)[2].name, "a) R 7 (b c");
  EXPECT_EQ((*processes)[2].priority, 20);
  EXPECT_EQ((*processes)[2].status, 'S');
  EXPECT_EQ((*processes)[2].flags, 4194560U);
  EXPECT_EQ(facts.parentProcess(4), 30);
  EXPECT_EQ(facts.parentProcess(1), 0);
  EXPECT_EQ(facts.parentProcess(20), std::nullopt);
  EXPECT_EQ(facts.parentProcess(5), std::nullopt);
}

TEST_F(LinuxDeviceFactsTest, MakesAStableIdentifierThatDoesNotShowTheMachines) {
  const std::string id = "0123456789abcdef0123456789abcdef";
  write("/etc/machine-id", id + "\n");
  const auto first = device().vendorIdentifier();
  ASSERT_TRUE(first);
  EXPECT_EQ(*first, "B94EE35B-B3E1-4168-B68E-2FE52027726C") << "it must never change";
  write("/etc/machine-id", "1123456789abcdef0123456789abcdef\n");
  EXPECT_NE(device().vendorIdentifier(), first);
  for (const std::string& bad : {std::string("uninitialized"), std::string(32, '0'), id + "0", id.substr(1)}) {
    write("/etc/machine-id", bad + "\n");
    EXPECT_EQ(device().vendorIdentifier(), std::nullopt) << bad;
  }
}

TEST_F(LinuxDeviceFactsTest, TakesTheFirstConnectedScreen) {
  write("/sys/class/drm/card0-DP-1/status", "disconnected\n");
  write("/sys/class/drm/card0-DP-1/modes", "1280x720\n");
  write("/sys/class/drm/card0-HDMI-A-1/status", "connected\n");
  write("/sys/class/drm/card0-HDMI-A-1/modes", "");
  EXPECT_FALSE(device().screen());
  write("/sys/class/drm/card0-HDMI-A-1/modes", "3840x2160\n1920x1080\n");
  const auto screen = device().screen();
  ASSERT_TRUE(screen);
  EXPECT_EQ(screen->width, 1920.0);
  EXPECT_EQ(screen->height, 1080.0);
  EXPECT_EQ(screen->scale, 2.0);
}

TEST_F(LinuxDeviceFactsTest, AnswersNothingToHostileContents) {
  for (const std::string& content : hostileContents()) {
    for (const char* file :
         {"/proc/meminfo", "/proc/cpuinfo", "/proc/stat", "/proc/7/stat", "/etc/os-release", "/etc/machine-info",
          "/etc/machine-id", "/sys/class/drm/c/modes", "/sys/devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq"}) {
      write(file, content);
    }
    write("/sys/class/drm/c/status", "connected\n");
    LinuxDeviceFacts facts = device();
    EXPECT_EQ(facts.memoryBytes(), std::nullopt);
    EXPECT_EQ(facts.userMemoryBytes(), std::nullopt);
    EXPECT_EQ(facts.processorHertz(), std::nullopt);
    EXPECT_FALSE(facts.bootTime());
    EXPECT_FALSE(facts.processes());
    EXPECT_EQ(facts.vendorIdentifier(), std::nullopt);
    EXPECT_FALSE(facts.screen());
    EXPECT_EQ(facts.systemVersion(), LinuxDeviceFacts("/nowhere").systemVersion());
  }
}

TEST_F(LinuxDeviceFactsTest, NeverWaitsForAFileThatIsNone) {
  std::filesystem::create_directories(root_ / "proc");
  ASSERT_EQ(::mkfifo((root_ / "proc/meminfo").c_str(), 0600), 0);
  std::filesystem::create_directories(root_ / "etc/machine-id");
  EXPECT_EQ(device().memoryBytes(), std::nullopt);
  EXPECT_EQ(device().vendorIdentifier(), std::nullopt);
}

TEST(SystemTextsTest, KnowsTheFormsOfDisplayModes) {
  EXPECT_EQ(heightOfMode("1920x1080"), 1080);
  EXPECT_EQ(heightOfMode("720x576i"), 576);
  for (const char* mode : {"", "x", "1920", "1920x", "x1080", "0x0", "-1x5", "1920x1080p", "1920x99999", "i"}) {
    EXPECT_EQ(heightOfMode(mode), std::nullopt) << mode;
  }
}

TEST(WirelessNetworkTest, WritesAccessPointsAndKnowsThoseThatAreNone) {
  EXPECT_EQ(accessPointText({0xa4, 0xb1, 0x0c, 0, 1, 0xff}), "a4:b1:0c:00:01:ff");
  for (const std::uint8_t none : std::array<std::uint8_t, 3>{0x00, 0x44, 0xff}) {
    EXPECT_EQ(accessPointText({none, none, none, none, none, none}), std::nullopt);
  }
  for (const std::string& interface : {std::string(), std::string("lo"), std::string(200, 'w')}) {
    EXPECT_FALSE(wirelessNetworkOf(interface)) << interface;
  }
}

/// What holds for a device however it is made.
void expectContract(DeviceFacts& facts) {
  ASSERT_TRUE(facts.machine() && facts.memoryBytes() && facts.userMemoryBytes() && facts.processors());
  EXPECT_LE(static_cast<std::uint64_t>(*facts.userMemoryBytes()), *facts.memoryBytes());
  EXPECT_LE(*facts.activeProcessors(), *facts.processors());
  ASSERT_TRUE(facts.bootTime() && facts.processes());
  const BootTime boot = *facts.bootTime();
  EXPECT_EQ(facts.bootTime()->seconds, boot.seconds);
  EXPECT_EQ(facts.bootTime()->microseconds, boot.microseconds);
  const auto processes = facts.processes();
  for (const ProcessFacts& process : *processes) {
    EXPECT_GT(process.processId, 0);
    EXPECT_GE(process.startSeconds, boot.seconds);
  }
  EXPECT_FALSE(facts.systemVersion().value_or("").empty());
  EXPECT_FALSE(facts.deviceName().value_or("").empty());
  EXPECT_EQ(facts.parentProcess(-1), std::nullopt);
  EXPECT_EQ(facts.ipv4Address(""), std::nullopt);
  EXPECT_EQ(facts.ipv4Address("no-such-interface"), std::nullopt);
  const std::regex uuid("[0-9A-F]{8}-[0-9A-F]{4}-[1-8][0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  EXPECT_TRUE(!facts.vendorIdentifier() || std::regex_match(*facts.vendorIdentifier(), uuid));
  EXPECT_FALSE(facts.proximityClose());
}

TEST(DeviceFactsContractTest, IsKeptByTheFakeAndByThisDevice) {
  testing::FakeDeviceFacts fake;
  expectContract(fake);
  LinuxDeviceFacts real;
  expectContract(real);
  EXPECT_EQ(real.parentProcess(::getpid()), ::getppid());
  EXPECT_EQ(real.ipv4Address("lo"), "127.0.0.1");
  const auto processes = real.processes();
  EXPECT_TRUE(std::ranges::any_of(*processes, [](const ProcessFacts& p) { return p.processId == ::getpid(); }));
}

TEST(DeviceFactsContractTest, TheBaseAnswersNothing) {
  DeviceFacts base;
  EXPECT_FALSE(base.machine() || base.memoryBytes() || base.processes() || base.screen() || base.wifi());
  EXPECT_FALSE(base.proximityClose());
}

}  // namespace
}  // namespace kesu
