#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "platform/linux/reachability/InternetFlags.h"
#include "platform/linux/reachability/ReachabilityMailbox.h"
#include "platform/linux/reachability/ReachabilityMonitor.h"

namespace kesu {

/// The watcher thread and the way to it. The source and its handles share one. In a child made by fork() there is no
/// such thread: every operation that would need it does nothing there.
class ReachabilityWatcher {
 public:
  explicit ReachabilityWatcher(ReachabilitySystem system);
  ~ReachabilityWatcher() { shutDown(); }

  ReachabilityWatcher(const ReachabilityWatcher&) = delete;
  ReachabilityWatcher& operator=(const ReachabilityWatcher&) = delete;

  /// Begins to watch; the first call starts the thread. Nothing when there can be no thread (any more). Main thread.
  std::shared_ptr<ReachabilityWatch> add(const ReachabilityTarget& target, std::function<void()> announce);

  /// Ends a watch; an announcement may be under way on the watcher thread. Main thread.
  void remove(const ReachabilityWatch& watch);

  /// Any thread.
  void observe(const std::string& host, int port, bool connected);

  /// Any thread.
  std::optional<std::uint32_t> internetFlags() { return internet_.get(); }

  /// What can be told at once about a target that nobody watches: the way to an address, nothing for a name.
  std::optional<std::uint32_t> flagsNow(const ReachabilityTarget& target);

  /// Ends the thread and waits for it (it never waits for the network). Nothing is announced afterwards. Main thread.
  void shutDown();

 private:
  bool isForked() const;
  bool ensureThread();

  const ReachabilitySystem system_;
  const pid_t process_;
  std::shared_ptr<WakeEvent> wake_;
  ReachabilityMailbox mailbox_;
  InternetFlags internet_;
  std::atomic<bool> running_{false};
  bool ended_ = false;
  std::uint64_t lastId_ = 0;
  std::unique_ptr<std::thread> thread_;
};

}  // namespace kesu
