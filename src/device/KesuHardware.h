#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/DeviceFacts.h>
#include <kesu/platform/ReachabilitySource.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kesu {

/// An answer of a probe: a text that is ready for a record, or nothing.
using ProbeText = std::optional<std::string>;

/// Questions to the kernel and the machine, answered as texts for records. Any thread; no probe fails loudly: what the
/// system cannot tell becomes nothing, 0, -1, "" or a fixed answer, as each operation says. Nothing is cached.
class KesuHardware {
 public:
  KesuHardware(DeviceFacts& facts, ReachabilitySource& reachability) : facts_(facts), reachability_(reachability) {}

  /// The text, or the null object when there is none.
  static Value nonNil(const ProbeText& text);

  ProbeText product() { return facts_.machine(); }  ///< Hardware model identifier.

  /// Boot time in milliseconds since 1970, or nothing.
  /// Kept: microseconds are added to the milliseconds unscaled; the collector has always got this sum.
  ProbeText systemUptime();

  /// Width and height of the main screen in pixels; 0 x 0 without a screen.
  std::pair<double, double> deviceResolution();
  std::string deviceBrightness() { return "0"; }  ///< Always "0": television screens do not tell.
  std::string screenHeight();
  std::string screenWidth();

  Value memorySize();      ///< Physical memory in bytes; "0" when unknown.
  Value userMemorySize();  ///< Memory for user processes in bytes, held within 32 bits; "0" when unknown.
  ProbeText numberOfProcessors();
  ProbeText numberOfActiveProcessors();
  ProbeText processorSpeed();     ///< In MHz; nothing for a clock below 1 Hz.
  ProbeText processorBusSpeed();  ///< In MHz; nothing for a clock below 1 Hz.

  /// One dictionary a process, the most recently listed first; nothing when the table cannot be read.
  std::optional<Array> systemProcesses();

  std::string localIP();  ///< IPv4 address of interface "en0"; "" when none.
  int reachability();     ///< 0, 1 or 2: the status of the way to the internet.
  std::string getCurrentRadioAccessTechnology() { return "Unknown"; }

  /// BSSID to the first, SSID to the second; both "" when in no wireless network.
  void currentWiFi(std::string& bssid, std::string& currentWiFiSSID_p);

  std::int32_t parentPIDForProcess(std::int32_t processId);  ///< -1 when unknown.
  ProbeText rebootTime();                                    ///< Kept: reads the boot time and answers nothing.

 private:
  Dictionary describeProcess(const ProcessFacts& process);

  DeviceFacts& facts_;
  ReachabilitySource& reachability_;
};

}  // namespace kesu
