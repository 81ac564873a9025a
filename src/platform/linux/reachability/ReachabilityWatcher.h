#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/reachability/InternetFlags.h"
#include "platform/linux/reachability/ReachabilityMailbox.h"
#include "platform/linux/reachability/ReachabilityMonitor.h"

namespace kesu {

/// The watcher thread, shared by the source and its handles. In a forked child there is no such thread: every operation
/// that needs it does nothing there.
class ReachabilityWatcher {
 public:
  explicit ReachabilityWatcher(ReachabilitySystem system);
  ~ReachabilityWatcher() { shutDown(); }

  ReachabilityWatcher(const ReachabilityWatcher&) = delete;
  ReachabilityWatcher& operator=(const ReachabilityWatcher&) = delete;

  /// Starts a watch; the first call starts the thread. Null when there can be no thread (any more). Main thread.
  std::shared_ptr<ReachabilityWatch> add(const ReachabilityTarget& target, std::function<void()> announce);

  /// Removes a watch; an announcement may still be running on the watcher thread. Main thread.
  void remove(const ReachabilityWatch& watch);

  /// Any thread.
  void observe(const std::string& host, int port, bool connected);

  /// Any thread.
  std::optional<std::uint32_t> internetFlags() { return internet_.get(); }

  /// Finds the flags of a target without a watch: of the way to an address; nothing for a name, which takes a lookup.
  std::optional<std::uint32_t> flagsNow(const ReachabilityTarget& target);

  /// Stops and joins the thread, which never waits for the network. Nothing is announced afterwards. Main thread.
  void shutDown();

 private:
  bool ensureThread();

  const ReachabilitySystem system_;
  const ForkGuard forkGuard_;
  std::shared_ptr<WakeEvent> wake_;
  ReachabilityMailbox mailbox_;
  InternetFlags internet_;
  std::atomic<bool> running_{false};
  bool ended_ = false;
  std::uint64_t lastId_ = 0;
  std::unique_ptr<std::thread> thread_;
};

}  // namespace kesu
