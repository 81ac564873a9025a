#pragma once

#include <kesu/platform/DeviceFacts.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kesu::testing {

/// A device whose facts are public fields. The defaults are a plausible small TV box; setting a field to std::nullopt
/// means that the device does not report it. No mutex: change fields only while no other thread reads them.
class FakeDeviceFacts final : public DeviceFacts {
 public:
  std::optional<std::string> machineText = "x86_64";
  std::optional<std::uint64_t> memory = 2147483648U;
  std::optional<std::int64_t> userMemory = 1073741824;
  std::optional<std::int64_t> processorClockHertz = 1800000000;
  std::optional<std::int64_t> busClockHertz;
  std::optional<std::int64_t> processorCount = 4;
  std::optional<std::int64_t> activeProcessorCount = 4;
  std::optional<BootTime> boot = BootTime{1489500000, 250000};
  std::optional<std::vector<ProcessFacts>> processTable = std::vector<ProcessFacts>{
      {1, "init", 20, 1489500001, 'S', 0x400100}, {42, "tv_app", 20, 1489500030, 'R', 0x400000}};
  std::map<std::int32_t, std::int32_t> parents = {{42, 1}};                  ///< Process id to parent's process id.
  std::map<std::string, std::string> addresses = {{"en0", "192.168.1.20"}};  ///< Interface name to dotted address.
  std::optional<WifiFacts> wifiNetwork;
  std::optional<std::string> systemVersionText = "12";
  std::optional<std::string> deviceNameText = "Living Room";
  std::optional<std::string> vendorIdentifierText = "6F9619FF-8B86-4011-B42D-00C04FC964FF";
  bool proximity = false;
  std::optional<ScreenFacts> mainScreen = ScreenFacts{1920.0, 1080.0, 1.0};

  std::optional<std::string> machine() override { return machineText; }
  std::optional<std::uint64_t> memoryBytes() override { return memory; }
  std::optional<std::int64_t> userMemoryBytes() override { return userMemory; }
  std::optional<std::int64_t> processorHertz() override { return processorClockHertz; }
  std::optional<std::int64_t> busHertz() override { return busClockHertz; }
  std::optional<std::int64_t> processors() override { return processorCount; }
  std::optional<std::int64_t> activeProcessors() override { return activeProcessorCount; }
  std::optional<BootTime> bootTime() override { return boot; }
  std::optional<std::vector<ProcessFacts>> processes() override { return processTable; }
  std::optional<std::int32_t> parentProcess(std::int32_t processId) override { return lookUp(parents, processId); }
  std::optional<std::string> ipv4Address(const std::string& interface) override { return lookUp(addresses, interface); }
  std::optional<WifiFacts> wifi() override { return wifiNetwork; }
  std::optional<std::string> systemVersion() override { return systemVersionText; }
  std::optional<std::string> deviceName() override { return deviceNameText; }
  std::optional<std::string> vendorIdentifier() override { return vendorIdentifierText; }
  bool proximityClose() override { return proximity; }
  std::optional<ScreenFacts> screen() override { return mainScreen; }

 private:
  template <typename Key, typename Fact>
  static std::optional<Fact> lookUp(const std::map<Key, Fact>& facts, const Key& key) {
    const auto found = facts.find(key);
    return found == facts.end() ? std::nullopt : std::optional<Fact>(found->second);
  }
};

}  // namespace kesu::testing
