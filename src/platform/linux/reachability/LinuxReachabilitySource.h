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
/// The first handle that is started brings up one watcher thread, which then sleeps until the network changes; a
/// process in which nothing is wrong is never woken. A host counts as reachable when a route over a running link leads
/// to one of its addresses. Since a cable that never changes tells nothing about the collector, the source learns from
/// connectionObserved() too: after a failed connection to a watched host and port it counts as unreachable and is
/// probed until it accepts connections again, which is a change. HostReachability.h holds the rules and intervals.
///
/// Callbacks that wait in the main loop are joined: two changes between two pumps are one callback. A change is seen
/// about 50 ms after the system reports it. After fork() the child's copy does nothing but answer internetFlags().
class LinuxReachabilitySource final : public ReachabilitySource {
 public:
  /// `loop` delivers the callbacks; it must outlive the source and its handles.
  explicit LinuxReachabilitySource(MainLoop& loop, ReachabilitySystem system = {});

  /// Ends the watcher thread and waits for it, which takes no longer than a question to the kernel. Handles that are
  /// left stay harmless.
  ~LinuxReachabilitySource() override;

  LinuxReachabilitySource(const LinuxReachabilitySource&) = delete;
  LinuxReachabilitySource& operator=(const LinuxReachabilitySource&) = delete;

  std::unique_ptr<ReachabilityHandle> watch(const ReachabilityTarget& target) override;

  /// One atomic read once a handle was started; before that an answer kept for a second (0.1 ms to find).
  std::optional<std::uint32_t> internetFlags() override;

  /// Any thread, at no cost worth mentioning while it is no news.
  void connectionObserved(const std::string& host, int port, bool connected) override;

 private:
  MainLoop& loop_;
  std::shared_ptr<ReachabilityWatcher> watcher_;
};

}  // namespace kesu
