#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Platform.h>

#include <cstddef>
#include <string>

namespace kesu::bench {

/// The name under which the benchmarks post.
inline const std::string kEventName = "level reached";

/// Five attributes of a usual size; "n" holds the number.
Attributes fiveAttributes(std::size_t number);

/// Posts event number `number` with fiveAttributes().
void postNumbered(std::size_t number);

/// A record as such an event leaves behind when it cannot be delivered.
Dictionary usualRecord(std::size_t number);

/// The library in this process on the real Linux platform, without its log lines. One per process.
class Session {
 public:
  enum class Launch {
    Full,           ///< Initialised and launched as a host does it; returns when what a launch posts is delivered.
    InitializeOnly  ///< Initialised: no watch of the network, no records but those that are posted.
  };

  Session(const std::string& homeDirectory, const std::string& collectorUrl, Launch launch, std::string caFile = {});

  /// Pumps until the background queue is empty and at most `mostPending` records and requests wait or are under way.
  void settle(std::size_t mostPending = 0);

  /// The same until the store is empty as well; for ten seconds at most.
  void deliverAll();

  /// Does what a host without anything to do does, for a while.
  void idle(double seconds);

  /// One turn of a host's loop that has nothing else to do: sleeps until there is work, pumps, and returns how long
  /// pump() took in seconds.
  double turn(int mostMilliseconds = 100);

  Platform& platform() { return platform_; }

 private:
  Platform& platform_;
};

/// Returns the processor time of all threads so far, in seconds.
double processorSeconds();

/// Returns the processor time of the background worker so far, in seconds. Waits for its queue.
double workerSeconds(Platform& platform);

/// A field of /proc/self/status in its own unit (memory: kB), such as "VmRSS".
long statusField(const std::string& name);

/// The memory of this process.
double residentMegabytes();
/// Without the pages of files (code of the text libraries, fonts), which the system reclaims as it likes.
double privateMegabytes();

/// What one frame lasts.
inline constexpr double kFrameSeconds = 1.0 / 60.0;

/// Makes "VmHWM" of statusField() count from now on.
void resetPeakMemory();

}  // namespace kesu::bench
