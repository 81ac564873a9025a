#include "device/KesuHardware.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <limits>

#include "foundation/NumberText.h"
#include "network/KesuServiceReachability.h"

namespace kesu {
namespace {

constexpr std::int64_t kHertzPerMegahertz = 1'000'000;

ProbeText megahertz(std::optional<std::int64_t> hertz) {
  return hertz && *hertz >= 1 ? ProbeText(decimal(*hertz / kHertzPerMegahertz)) : std::nullopt;
}

}  // namespace

Value KesuHardware::nonNil(const ProbeText& text) {
  return text ? Value(*text) : Value(Null{});
}

ProbeText KesuHardware::systemUptime() {
  const auto boot = facts_.bootTime();
  return boot ? ProbeText(decimal(boot->seconds * 1000 + boot->microseconds)) : std::nullopt;
}

std::pair<double, double> KesuHardware::deviceResolution() {
  const ScreenFacts screen = facts_.screen().value_or(ScreenFacts{});
  return {screen.width * screen.scale, screen.height * screen.scale};
}

std::string KesuHardware::screenHeight() {
  return generalReal(deviceResolution().second);
}

std::string KesuHardware::screenWidth() {
  return generalReal(deviceResolution().first);
}

Value KesuHardware::memorySize() {
  return nonNil(std::to_string(facts_.memoryBytes().value_or(0)));
}

Value KesuHardware::userMemorySize() {
  // Kept: the collector expects a signed 32-bit number; larger memories read as its maximum.
  constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();
  return nonNil(decimal(std::clamp<std::int64_t>(facts_.userMemoryBytes().value_or(0), 0, kLargest)));
}

ProbeText KesuHardware::numberOfProcessors() {
  return decimalOrNothing(facts_.processors());
}

ProbeText KesuHardware::numberOfActiveProcessors() {
  return decimalOrNothing(facts_.activeProcessors());
}

ProbeText KesuHardware::processorSpeed() {
  return megahertz(facts_.processorHertz());
}

ProbeText KesuHardware::processorBusSpeed() {
  return megahertz(facts_.busHertz());
}

Dictionary KesuHardware::describeProcess(const ProcessFacts& process) {
  char flags[16];
  // Kept: a literal 0 in front of the hexadecimal digits, without the usual x.
  std::snprintf(flags, sizeof flags, "0%" PRIx32, process.flags);
  return {{"ProcessID", decimal(process.processId)},
          {"ProcessName", process.name},
          {"priority", decimal(process.priority)},
          {"launchSec", decimal(process.startSeconds)},
          {"processStartDate", Date{static_cast<double>(process.startSeconds)}},
          {"processParentID", decimal(parentPIDForProcess(process.processId))},
          {"processStatus", decimal(process.status)},
          {"processFlags", flags}};
}

std::optional<Array> KesuHardware::systemProcesses() {
  const auto processes = facts_.processes();
  if (!processes || processes->empty()) {
    return std::nullopt;
  }
  Array described;
  described.reserve(processes->size());
  // From the end: readers of the list expect the latest process first.
  for (auto process = processes->rbegin(); process != processes->rend(); ++process) {
    described.emplace_back(describeProcess(*process));
  }
  return described;
}

std::string KesuHardware::localIP() {
  return facts_.ipv4Address("en0").value_or("");
}

int KesuHardware::reachability() {
  const auto flags = reachability_.internetFlags();
  return flags ? static_cast<int>(KesuServiceReachability::networkStatusForFlags(*flags)) : 0;
}

void KesuHardware::currentWiFi(std::string& bssid, std::string& currentWiFiSSID_p) {
  const WifiFacts wifi = facts_.wifi().value_or(WifiFacts{});
  bssid = wifi.bssid;
  currentWiFiSSID_p = wifi.ssid;
}

std::int32_t KesuHardware::parentPIDForProcess(std::int32_t processId) {
  const std::int32_t parent = facts_.parentProcess(processId).value_or(0);
  return parent > 0 ? parent : -1;
}

ProbeText KesuHardware::rebootTime() {
  facts_.bootTime();  // Kept: read, and not used.
  return std::nullopt;
}

}  // namespace kesu
