#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kesu {

/// Bits that describe the route to a target.
enum ReachabilityFlags : std::uint32_t {
  kFlagReachable = 0x2,
  kFlagConnectionRequired = 0x4,
  kFlagConnectionOnTraffic = 0x8,
  kFlagInterventionRequired = 0x10,
  kFlagConnectionOnDemand = 0x20,
  kFlagIsDirect = 0x20000,  ///< No gateway on the route.
  kFlagIsWwan = 0x40000     ///< The route uses a mobile-radio interface.
};

/// What is watched: a host by name (with the port that is probed), or an IPv4 address. An empty name always means the
/// address: a caller that has only a name must refuse an empty one.
struct ReachabilityTarget {
  std::string hostName;       ///< Name or numeric address; empty when `address` is meant.
  int port = 443;             ///< Port that is probed once connecting to hostName has failed.
  std::uint32_t address = 0;  ///< IPv4 address in host byte order, used when hostName is empty; 0 = "the internet",
                              ///< 169.254.0.0 = the directly attached network.
};

/// Watches the route to one target. Main thread.
class KESU_API ReachabilityHandle {
 public:
  virtual ~ReachabilityHandle() = default;

  /// Returns what is known now, without blocking; nothing when it is not known (yet).
  virtual std::optional<std::uint32_t> flags() = 0;

  /// Starts watching: `changed` runs on the main loop once within 1 s, then after every change. Returns false when
  /// watching is impossible or was started already.
  virtual bool start(std::function<void()> changed) = 0;

  /// Stops watching; no callback runs afterwards. Destroying the handle does the same.
  virtual void stop() = 0;
};

/// Makes reachability handles.
class KESU_API ReachabilitySource {
 public:
  virtual ~ReachabilitySource() = default;

  /// Makes a handle for a target; null when the name cannot be a host name. Main thread.
  virtual std::unique_ptr<ReachabilityHandle> watch(const ReachabilityTarget& target) = 0;

  /// Returns the flags of the all-zero address: whether the device has a usable route to the internet. Any thread;
  /// never blocks, needs no handle.
  virtual std::optional<std::uint32_t> internetFlags() = 0;

  /// Reports that a connection to a host was tried; handles that watch this host and port learn from it. A failure
  /// means that connecting failed (name, TCP, TLS): not a reply with an error status, and not an attempt that the
  /// library gave up itself. Attempts over a proxy report successes only: its failures say nothing about the host. Any
  /// thread, cheap; call it before the outcome is passed on to the code that stores the record.
  virtual void connectionObserved(const std::string& host, int port, bool connected) = 0;
};

}  // namespace kesu
