#include "platform/linux/reachability/LinuxReachabilitySource.h"

#include <atomic>
#include <functional>
#include <utility>

namespace kesu {
namespace {

/// Brings announcements of the watcher thread to the owner on the main loop.
class Listener : public std::enable_shared_from_this<Listener> {
 public:
  Listener(MainLoop& loop, std::function<void()> changed) : loop_(loop), changed_(std::move(changed)) {}

  /// Watcher thread.
  void announce() {
    if (!queued_.exchange(true)) {
      loop_.post([self = weak_from_this()] {
        if (const auto listener = self.lock()) {
          listener->deliver();
        }
      });
    }
  }

  /// Main thread.
  void end() { changed_ = nullptr; }

 private:
  void deliver() {
    queued_ = false;
    // A copy: the callback may end the watch and with it the function that runs.
    if (const std::function<void()> changed = changed_) {
      changed();
    }
  }

  MainLoop& loop_;
  std::atomic<bool> queued_{false};
  std::function<void()> changed_;  // Main thread only.
};

class Handle final : public ReachabilityHandle {
 public:
  Handle(MainLoop& loop, std::shared_ptr<ReachabilityWatcher> watcher, ReachabilityTarget target)
      : loop_(loop), watcher_(std::move(watcher)), target_(std::move(target)) {}
  ~Handle() override { end(); }

  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  std::optional<std::uint32_t> flags() override { return watch_ ? watch_->flags() : watcher_->flagsNow(target_); }

  bool start(std::function<void()> changed) override {
    if (watch_ || !changed) {
      return false;
    }
    auto listener = std::make_shared<Listener>(loop_, std::move(changed));
    watch_ = watcher_->add(target_, [weak = std::weak_ptr<Listener>(listener)] {
      if (const auto alive = weak.lock()) {
        alive->announce();
      }
    });
    listener_ = watch_ ? std::move(listener) : nullptr;
    return watch_ != nullptr;
  }

  void stop() override { end(); }

 private:
  void end() {
    if (watch_) {
      listener_->end();
      watcher_->remove(*watch_);
      listener_.reset();
      watch_.reset();
    }
  }

  MainLoop& loop_;
  std::shared_ptr<ReachabilityWatcher> watcher_;
  ReachabilityTarget target_;
  std::shared_ptr<Listener> listener_;
  std::shared_ptr<ReachabilityWatch> watch_;
};

}  // namespace

LinuxReachabilitySource::LinuxReachabilitySource(MainLoop& loop, ReachabilitySystem system)
    : loop_(loop), watcher_(std::make_shared<ReachabilityWatcher>(std::move(system))) {}

LinuxReachabilitySource::~LinuxReachabilitySource() {
  watcher_->shutDown();
}

std::unique_ptr<ReachabilityHandle> LinuxReachabilitySource::watch(const ReachabilityTarget& target) {
  if (!target.hostName.empty() && !canBeHostName(comparableHostName(target.hostName))) {
    return nullptr;
  }
  return std::make_unique<Handle>(loop_, watcher_, target);
}

std::optional<std::uint32_t> LinuxReachabilitySource::internetFlags() {
  return watcher_->internetFlags();
}

void LinuxReachabilitySource::connectionObserved(const std::string& host, int port, bool connected) {
  watcher_->observe(host, port, connected);
}

}  // namespace kesu
