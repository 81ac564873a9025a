#pragma once

#include <kesu/platform/ReachabilitySource.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/base/WakeEvent.h"

namespace kesu {

/// A target that is being watched: what its handle and the monitor share.
class ReachabilityWatch {
 public:
  /// `announce` is called on the monitor's thread whenever the flags have changed.
  ReachabilityWatch(std::uint64_t id, ReachabilityTarget target, std::function<void()> announce);

  const std::uint64_t id;
  const ReachabilityTarget target;
  const std::string host;  ///< The target's host name in comparable form.
  const std::function<void()> announce;

  /// The present flags. Any thread.
  std::optional<std::uint32_t> flags() const;
  void setFlags(std::optional<std::uint32_t> flags);

 private:
  std::atomic<std::int64_t> flags_;
};

/// What other threads report to the ReachabilityMonitor. All operations may be called from any thread and never wait
/// for the monitor's work.
class ReachabilityMailbox {
 public:
  /// One watch, and what real traffic has found out about its host since the last take().
  struct Item {
    std::shared_ptr<ReachabilityWatch> watch;
    bool failed = false;     ///< A connection failed.
    bool connected = false;  ///< The last connection succeeded.
  };

  explicit ReachabilityMailbox(std::shared_ptr<WakeEvent> wake);

  void add(std::shared_ptr<ReachabilityWatch> watch);
  void remove(std::uint64_t watchId);

  /// Reports that a connection to a host was tried. Wakes the monitor only when that is news to it.
  void observe(const std::string& host, int port, bool connected);

  /// Makes take() return nothing from now on, which stops the monitor.
  void stop();

  /// For the monitor: returns every present watch and removes its news; nothing after stop().
  std::optional<std::vector<Item>> take();

  /// For the monitor: sets whether a successful connection would be news for a watch.
  void setWantsSuccesses(std::uint64_t watchId, bool wants);

 private:
  struct Entry {
    Item item;
    bool wantsSuccesses = false;
  };

  static bool note(Entry& entry, bool connected);

  std::shared_ptr<WakeEvent> wake_;
  Mutex mutex_;
  std::vector<Entry> entries_ KESU_GUARDED_BY(mutex_);
  bool stopped_ KESU_GUARDED_BY(mutex_) = false;
};

}  // namespace kesu
