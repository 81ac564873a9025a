#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kesu {

/// One process of the system.
struct ProcessFacts {
  std::int32_t processId = 0;
  std::string name;
  std::uint8_t priority = 0;
  std::int64_t startSeconds = 0;  ///< Since 1970.
  std::int8_t status = 0;         ///< The system's status letter as a number.
  std::uint32_t flags = 0;
};

/// The wireless network that the device uses.
struct WifiFacts {
  std::string bssid;
  std::string ssid;
};

/// When the device was started.
struct BootTime {
  std::int64_t seconds = 0;  ///< Since 1970.
  std::int64_t microseconds = 0;
};

/// The main screen in points; `scale` is pixels per point.
struct ScreenFacts {
  double width = 0.0;
  double height = 0.0;
  double scale = 1.0;
};

/// Facts about the device, as the system reports them; nothing where it does not. Callable from any thread; reads small
/// system files, never waits for the network. The base class returns nothing everywhere.
class KESU_API DeviceFacts {
 public:
  virtual ~DeviceFacts() = default;

  /// Returns the identifier of the hardware model, such as "x86_64".
  virtual std::optional<std::string> machine() { return {}; }

  virtual std::optional<std::uint64_t> memoryBytes() { return {}; }     ///< Physical memory.
  virtual std::optional<std::int64_t> userMemoryBytes() { return {}; }  ///< Memory available to user processes.
  virtual std::optional<std::int64_t> processorHertz() { return {}; }
  virtual std::optional<std::int64_t> busHertz() { return {}; }
  virtual std::optional<std::int64_t> processors() { return {}; }        ///< Configured processors.
  virtual std::optional<std::int64_t> activeProcessors() { return {}; }  ///< Processors on line.
  virtual std::optional<BootTime> bootTime() { return {}; }
  virtual std::optional<std::vector<ProcessFacts>> processes() { return {}; }  ///< In the order of the system's table.
  virtual std::optional<std::int32_t> parentProcess(std::int32_t /*processId*/) { return {}; }

  /// Returns the last IPv4 address of an interface, dotted.
  virtual std::optional<std::string> ipv4Address(const std::string& /*interface*/) { return {}; }

  virtual std::optional<WifiFacts> wifi() { return {}; }
  virtual std::optional<std::string> systemVersion() { return {}; }  ///< Version of the operating system.
  virtual std::optional<std::string> deviceName() { return {}; }     ///< Name that the user gave the device.

  /// Returns a UUID text that is the same for all applications of a vendor.
  virtual std::optional<std::string> vendorIdentifier() { return {}; }

  virtual bool proximityClose() { return false; }  ///< An object is close to the device's sensor.
  virtual std::optional<ScreenFacts> screen() { return {}; }
};

}  // namespace kesu
