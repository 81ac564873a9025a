#pragma once

#include <kesu/platform/LocaleService.h>

#include <string>
#include <string_view>
#include <utility>

#include "device/KesuDevice.h"
#include "device/KesuHardware.h"
#include "services/DeploymentSettings.h"

namespace kesu {

/// Returns the SHA-256 of a text as 64 lower-case hexadecimal digits.
/// Kept: only as many UTF-8 bytes are hashed as the text has UTF-16 units, so that identifiers of installations with
/// names outside ASCII stay the same.
std::string hashStr(std::string_view text);

/// The one entry for facts about the device. Forwards to KesuHardware and KesuDevice; any thread.
class KesuMetrics {
 public:
  KesuMetrics(DeviceFacts& facts, ReachabilitySource& reachability, LocaleService& locale, DeploymentSettings& settings)
      : hardware_(facts, reachability), device_(facts), facts_(facts), locale_(locale), settings_(settings) {}

  /// Returns the instant as "yyyy-MM-dd HH:mm:ss Z" in the device's time zone.
  std::string formattedDate(double secondsSince1970) { return locale_.formatTimestamp(secondsSince1970); }

  /// Returns the network class: "w" with a way to the internet, "n" without, the radio technology over mobile radio.
  std::string granularReachability();

  /// Returns "Simulated" on a simulator's processor names, else the fixed text of a platform without a carrier.
  std::string carrierName();

  static Value nonNil(const ProbeText& text) { return KesuHardware::nonNil(text); }
  std::string batteryLevel() { return device_.batterryLevel(); }
  std::string batteryState() { return device_.batteryState(); }
  std::string orientation() { return device_.deviceOrientation(); }
  ProbeText systemVersion() { return device_.systemVersion(); }
  std::string screenHeight() { return hardware_.screenHeight(); }
  std::string screenWidth() { return hardware_.screenWidth(); }
  ProbeText uptime() { return hardware_.systemUptime(); }
  ProbeText product() { return hardware_.product(); }
  Value memorySize() { return hardware_.memorySize(); }
  Value userMemorySize() { return hardware_.userMemorySize(); }
  ProbeText numberProcessors() { return hardware_.numberOfProcessors(); }
  ProbeText numberActiveProcessors() { return hardware_.numberOfActiveProcessors(); }
  ProbeText processorSpeed() { return hardware_.processorSpeed(); }
  ProbeText processorBusSpeed() { return hardware_.processorBusSpeed(); }
  ProbeText vendorIdentifier() { return facts_.vendorIdentifier(); }  ///< UUID text.
  ProbeText deviceName() { return facts_.deviceName(); }              ///< The name that the user gave the device.
  void currentWiFi(std::string& bssid, std::string& currentWiFiSSID_p) {
    hardware_.currentWiFi(bssid, currentWiFiSSID_p);
  }

  // Owed to hosts and to the agreed interface; no caller inside the library, as no record carries these facts.
  std::string proximityState() { return device_.deviceProximateState(); }
  ProbeText carrier() { return std::nullopt; }  ///< Always nothing: a television has no carrier.
  std::pair<double, double> resolution() { return hardware_.deviceResolution(); }
  std::string brightness() { return hardware_.deviceBrightness(); }
  std::optional<Array> systemProcesses() { return hardware_.systemProcesses(); }
  std::string getLocalIP() { return hardware_.localIP(); }
  bool IsProductionMode() { return settings_.isProductionMode(); }  ///< False in development mode.
  std::string hashStr(std::string_view text) { return kesu::hashStr(text); }

 private:
  KesuHardware hardware_;
  KesuDevice device_;
  DeviceFacts& facts_;
  LocaleService& locale_;
  DeploymentSettings& settings_;
};

}  // namespace kesu
