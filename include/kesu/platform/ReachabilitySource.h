#pragma once

#include <kesu/Export.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kesu {

/// Bits of what is known about the way to a target.
enum ReachabilityFlags : std::uint32_t {
  kFlagReachable = 0x2,
  kFlagConnectionRequired = 0x4,
  kFlagConnectionOnTraffic = 0x8,
  kFlagInterventionRequired = 0x10,
  kFlagConnectionOnDemand = 0x20,
  kFlagIsDirect = 0x20000,  ///< No gateway on the way.
  kFlagIsWwan = 0x40000     ///< The way leaves through a mobile-radio interface.
};

/// What is watched: a host by name (with the port that is probed), or an IPv4 address. An empty name always means the
/// address: whoever has only a name refuses an empty one first.
struct ReachabilityTarget {
  std::string hostName;       ///< Name or numeric address; empty when `address` is meant.
  int port = 443;             ///< Port that is probed once connecting to hostName has failed.
  std::uint32_t address = 0;  ///< IPv4 address in host byte order, used when hostName is empty; 0 = "the internet",
                              ///< 169.254.0.0 = the directly attached network.
};

/// Watches the way to one target. Belongs to the main thread.
class KESU_API ReachabilityHandle {
 public:
  virtual ~ReachabilityHandle() = default;

  /// What is known now, without blocking; nothing when it cannot be told (yet).
  virtual std::optional<std::uint32_t> flags() = 0;

  /// Starts watching: `changed` runs on the main loop once soon after the start (1 s at the latest), then after every
  /// change. False when watching is impossible or already under way.
  virtual bool start(std::function<void()> changed) = 0;

  /// Ends watching; no callback runs afterwards. Destroying the handle does the same.
  virtual void stop() = 0;
};

/// Makes reachability handles.
class KESU_API ReachabilitySource {
 public:
  virtual ~ReachabilitySource() = default;

  /// A handle for a target, or nothing when the name can be no host name. Main thread.
  virtual std::unique_ptr<ReachabilityHandle> watch(const ReachabilityTarget& target) = 0;

  /// Whether the device has a usable way to the internet: the flags of the all-zero address, asked from any thread
  /// without blocking and without a handle.
  virtual std::optional<std::uint32_t> internetFlags() = 0;

  /// A connection to a host was tried and came about or not; sources that watch this host and port learn from it. A
  /// failure means that connecting failed (name, TCP, TLS): not an answer with an error status, and not an attempt that
  /// the library gave up itself. Attempts over a proxy report successes only: a proxy's failure says nothing about the
  /// host. Any thread, cheap; call it before the outcome is handed to whoever stores the record.
  virtual void connectionObserved(const std::string& host, int port, bool connected) = 0;
};

}  // namespace kesu
