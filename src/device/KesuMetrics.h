#pragma once

#include <kesu/platform/LocaleService.h>

#include <string>
#include <string_view>
#include <utility>

#include "device/KesuDevice.h"
#include "device/KesuHardware.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// SHA-256 of a text as 64 lower-case hexadecimal digits.
/// Kept: of the UTF-8 bytes only as many are hashed as the text has UTF-16 units, so that identifiers of installations
/// with names outside ASCII stay what they are.
std::string hashStr(std::string_view text);

/// The one entry for facts about the device. Forwards to KesuHardware and KesuDevice; any thread.
class KesuMetrics {
 public:
  KesuMetrics(DeviceFacts& facts, ReachabilitySource& reachability, LocaleService& locale, DeploymentSettings& settings)
      : hardware_(facts, reachability), device_(facts), facts_(facts), locale_(locale), settings_(settings) {}

  /// The instant as "yyyy-MM-dd HH:mm:ss Z" in the device's time zone.
  std::string formattedDate(double secondsSince1970) { return locale_.formatTimestamp(secondsSince1970); }

  std::string batteryLevel() { return device_.batterryLevel(); }
  std::string batteryState() { return device_.batteryState(); }
  std::string orientation() { return device_.deviceOrientation(); }
  std::string proximityState() { return device_.deviceProximateState(); }
  ProbeText systemVersion() { return device_.systemVersion(); }
  ProbeText carrier() { return std::nullopt; }  ///< Always nothing: a television has no carrier.
  std::pair<double, double> resolution() { return hardware_.deviceResolution(); }
  std::string brightness() { return hardware_.deviceBrightness(); }
  std::string screenHeight() { return hardware_.screenHeight(); }
  std::string screenWidth() { return hardware_.screenWidth(); }
  static Value nonNil(const ProbeText& text) { return KesuHardware::nonNil(text); }
  ProbeText uptime() { return hardware_.systemUptime(); }
  std::optional<Array> systemProcesses() { return hardware_.systemProcesses(); }
  ProbeText product() { return hardware_.product(); }
  Value memorySize() { return hardware_.memorySize(); }
  Value userMemorySize() { return hardware_.userMemorySize(); }
  void currentWiFi(std::string& bssid, std::string& currentWiFiSSID_p) {
    hardware_.currentWiFi(bssid, currentWiFiSSID_p);
  }
  std::string getLocalIP() { return hardware_.localIP(); }

  /// Network class letter: "w" with a way to the internet, "n" without, the radio technology over mobile radio.
  std::string granularReachability();

  ProbeText numberProcessors() { return hardware_.numberOfProcessors(); }
  ProbeText numberActiveProcessors() { return hardware_.numberOfActiveProcessors(); }
  ProbeText processorSpeed() { return hardware_.processorSpeed(); }
  ProbeText processorBusSpeed() { return hardware_.processorBusSpeed(); }

  /// False in development mode, which switches the messaging service to its development paths.
  bool IsProductionMode() { return settings_.isProductionMode(); }

  std::string hashStr(std::string_view text) { return kesu::hashStr(text); }

  ProbeText vendorIdentifier() { return facts_.vendorIdentifier(); }  ///< UUID text.
  ProbeText deviceName() { return facts_.deviceName(); }              ///< Name that the user gave the device.

  /// "Simulated" on a simulator's processor names, else the fixed answer of a platform without a carrier.
  std::string carrierName();

 private:
  KesuHardware hardware_;
  KesuDevice device_;
  DeviceFacts& facts_;
  LocaleService& locale_;
  DeploymentSettings& settings_;
};

}  // namespace kesu
