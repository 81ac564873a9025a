#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/linux/base/LinuxMainLoop.h"

namespace kesu {

/// Warns when the machine runs short of memory, by triggers in the kernel's pressure file. The kernel counts, and the
/// main loop's own descriptor is woken: no thread, no timer, no wake-up while all is well.
///
/// Where the file is missing (kernels without pressure information), cannot be written, or descriptors have run out,
/// there are no warnings and no log line: a host can still call Application::didReceiveMemoryWarning().
///
/// Main thread. The loop must outlive it.
class LinuxMemoryPressure {
 public:
  static constexpr const char* kPressureFile = "/proc/pressure/memory";

  /// Warnings are at least this far apart: the memory that one frees takes a moment to show, and until then there is
  /// nothing more to free.
  static constexpr double kQuietSeconds = 10.0;

  /// Makes a descriptor that has urgent data (POLLPRI) under pressure; an empty one where that does not work.
  using Opener = std::function<UniqueFd()>;

  /// Opens nothing yet. `now` returns seconds on a clock that does not jump; `underPressure` runs inside pump().
  LinuxMemoryPressure(
      LinuxMainLoop& loop, std::function<double()> now, std::function<void()> underPressure,
      Opener opener = [] { return openTrigger(kPressureFile); });
  ~LinuxMemoryPressure();

  LinuxMemoryPressure(const LinuxMemoryPressure&) = delete;
  LinuxMemoryPressure& operator=(const LinuxMemoryPressure&) = delete;

  /// Opens the triggers, which takes some tens of microseconds: better in the first pump() than at the start of the
  /// program. Returns whether there can be warnings. Call it once.
  bool start();

  /// Opens a pressure file with a trigger: some task has waited for memory during 150 ms of 2 s. Empty when that does
  /// not work. Never waits.
  static UniqueFd openTrigger(const std::string& path);

 private:
  void fired();

  LinuxMainLoop& loop_;
  std::function<double()> now_;
  std::function<void()> underPressure_;
  Opener opener_;
  std::optional<double> lastWarning_;
  UniqueFd waking_;
  UniqueFd telling_;
};

}  // namespace kesu
