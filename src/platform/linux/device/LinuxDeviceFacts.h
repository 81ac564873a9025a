#pragma once

#include <kesu/platform/DeviceFacts.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu {

/// The facts that Linux reports: from /proc, /sys, /etc, and a few system calls. Callable from any thread.
///
/// Records ask for many of these each time, so every answer costs some microseconds, tens at most (processes() and
/// parentProcess() read one file per process). Only what cannot change while the device runs is kept. There is no
/// portable way to read the bus clock and the proximity sensor: they have no answer.
class LinuxDeviceFacts final : public DeviceFacts {
 public:
  /// `root`: the directory of "proc", "sys" and "etc".
  explicit LinuxDeviceFacts(std::string root = "/");

  std::optional<std::string> machine() override;  ///< The kernel's name for the hardware.
  std::optional<std::uint64_t> memoryBytes() override;
  std::optional<std::int64_t> userMemoryBytes() override;  ///< What the kernel estimates as available without swapping.
  std::optional<std::int64_t> processorHertz() override;   ///< The highest clock of the first processor.
  std::optional<std::int64_t> processors() override;
  std::optional<std::int64_t> activeProcessors() override;

  /// Whole seconds: the microseconds are always 0, so that every call returns the same. It changes when the clock is
  /// set (a device without a battery-backed clock starts in 1970).
  std::optional<BootTime> bootTime() override;

  std::optional<std::vector<ProcessFacts>> processes() override;
  std::optional<std::int32_t> parentProcess(std::int32_t processId) override;
  std::optional<std::string> ipv4Address(const std::string& interface) override;
  std::optional<WifiFacts> wifi() override;             ///< Of the first wireless interface in a network.
  std::optional<std::string> systemVersion() override;  ///< The distribution's version, else the kernel's release.
  std::optional<std::string> deviceName() override;     ///< The name given by the user, else the host name.

  /// A UUID that stays the same until the system is reinstalled; derived from the system's identifier, which it does
  /// not reveal.
  std::optional<std::string> vendorIdentifier() override;

  /// The first connected display in its preferred mode: always 1920x1080 points, `scale` pixels each.
  std::optional<ScreenFacts> screen() override;

 private:
  std::string path(const char* below) const { return root_ + below; }
  std::optional<std::int64_t> readProcessorHertz() const;
  std::optional<std::string> readSystemVersion() const;
  std::optional<BootTime> readBootTime() const;

  const std::string root_;  // Without a slash at the end.
  Mutex mutex_;
  std::optional<std::uint64_t> memoryBytes_ KESU_GUARDED_BY(mutex_);
  std::optional<std::int64_t> processorHertz_ KESU_GUARDED_BY(mutex_);
  std::optional<std::int64_t> processors_ KESU_GUARDED_BY(mutex_);
  std::optional<std::string> systemVersion_ KESU_GUARDED_BY(mutex_);
  std::optional<BootTime> bootTime_ KESU_GUARDED_BY(mutex_);
  double clockOffset_ KESU_GUARDED_BY(mutex_) = 0.0;  // Between the clocks when bootTime_ was read.
};

}  // namespace kesu
