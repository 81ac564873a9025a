#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/DeviceFacts.h>
#include <kesu/platform/ReachabilitySource.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace kesu {

/// The result of a probe: a text that is ready for a record, or nothing.
using ProbeText = std::optional<std::string>;

/// Facts about the kernel and the machine, as texts for records. Any thread. No probe fails loudly: an unknown fact is
/// nothing, 0, -1, "" or a fixed answer, as documented for each. Nothing is cached.
class KesuHardware {
 public:
  KesuHardware(DeviceFacts& facts, ReachabilitySource& reachability) : facts_(facts), reachability_(reachability) {}

  /// Returns the text, or the null object when there is none.
  static Value nonNil(const ProbeText& text);

  ProbeText product() { return facts_.machine(); }  ///< Hardware model identifier.

  /// Returns the boot time in milliseconds since 1970, or nothing.
  /// Kept: microseconds are added to the milliseconds unscaled; the collector has always received this sum.
  ProbeText systemUptime();

  /// Returns width and height of the main screen in pixels; 0 x 0 without a screen.
  std::pair<double, double> deviceResolution();
  std::string deviceBrightness() { return "0"; }  ///< Always "0": television screens do not report it.
  std::string screenHeight();
  std::string screenWidth();

  Value memorySize();      ///< Physical memory in bytes; "0" when unknown.
  Value userMemorySize();  ///< Memory for user processes in bytes, clamped to 31 bits; "0" when unknown.
  ProbeText numberOfProcessors();
  ProbeText numberOfActiveProcessors();
  ProbeText processorSpeed();     ///< In MHz; nothing for a clock below 1 Hz.
  ProbeText processorBusSpeed();  ///< In MHz; nothing for a clock below 1 Hz.

  /// Returns one dictionary per process, the last listed first; nothing when the table cannot be read.
  std::optional<Array> systemProcesses();

  std::string localIP();  ///< IPv4 address of interface "en0"; "" when none.
  int reachability();     ///< NetworkStatus of the way to the internet: 0, 1 or 2.
  std::string getCurrentRadioAccessTechnology() { return "Unknown"; }

  /// Sets BSSID and SSID; both "" outside a wireless network.
  void currentWiFi(std::string& bssid, std::string& currentWiFiSSID_p);

  // Owed to hosts and to the agreed interface; no caller inside the library but this class.
  std::int32_t parentPIDForProcess(std::int32_t processId);  ///< -1 when unknown.
  ProbeText rebootTime();                                    ///< Kept: reads the boot time and returns nothing.

 private:
  Dictionary describeProcess(const ProcessFacts& process);

  DeviceFacts& facts_;
  ReachabilitySource& reachability_;
};

}  // namespace kesu
