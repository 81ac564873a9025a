#pragma once

#include <string>

#include "device/KesuHardware.h"

namespace kesu {

/// Facts about the device itself; most are fixed on a television. Any thread.
class KesuDevice {
 public:
  explicit KesuDevice(DeviceFacts& facts) : facts_(facts) {}

  std::string batterryLevel() { return "unmonitored"; }  ///< Kept: spelled so.
  std::string batteryState() { return "Unknown"; }
  std::string deviceOrientation() { return "Unknown"; }
  std::string deviceProximateState() { return facts_.proximityClose() ? "near" : "far"; }
  ProbeText systemVersion() { return facts_.systemVersion(); }

 private:
  DeviceFacts& facts_;
};

}  // namespace kesu
