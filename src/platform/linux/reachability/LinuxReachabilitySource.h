#pragma once

#include <kesu/platform/MainLoop.h>
#include <kesu/platform/ReachabilitySource.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/reachability/ReachabilityWatcher.h"

namespace kesu {

/// Watches hosts by the kernel's routes, the system's name lookups and what the HTTP client sees.
///
/// The first started handle starts one watcher thread, which sleeps until the network changes; while all is well the
/// process is never woken. A host counts as reachable when a route over a running link leads to one of its addresses. A
/// television's cable hardly ever changes, so the source learns from connectionObserved() too: after a failed
/// connection a watched host and port count as unreachable and are probed until they accept connections again, which is
/// a change. HostReachability.h has the rules and intervals.
///
/// Two changes between two pumps of the main loop are one callback. A change is seen about 50 ms after the system
/// reports it. In a forked child only internetFlags() works.
class LinuxReachabilitySource final : public ReachabilitySource {
 public:
  /// `loop` delivers the callbacks; it must outlive the source and its handles.
  explicit LinuxReachabilitySource(MainLoop& loop, ReachabilitySystem system = {});

  /// Stops and joins the watcher thread, which takes no longer than a question to the kernel. Handles that are left do
  /// nothing any more.
  ~LinuxReachabilitySource() override;

  LinuxReachabilitySource(const LinuxReachabilitySource&) = delete;
  LinuxReachabilitySource& operator=(const LinuxReachabilitySource&) = delete;

  std::unique_ptr<ReachabilityHandle> watch(const ReachabilityTarget& target) override;

  /// One atomic read once a handle was started; before that, an answer of the last second (0.1 ms to find).
  std::optional<std::uint32_t> internetFlags() override;

  /// Any thread. While it is no news, it takes one short mutex.
  void connectionObserved(const std::string& host, int port, bool connected) override;

 private:
  MainLoop& loop_;
  std::shared_ptr<ReachabilityWatcher> watcher_;
};

}  // namespace kesu
