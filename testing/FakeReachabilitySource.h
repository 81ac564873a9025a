#pragma once

#include <kesu/platform/MainLoop.h>
#include <kesu/platform/ReachabilitySource.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A reachability source whose flags the test sets: reachable, without the direct bit, until setFlags().
///
/// Handles obey the contract of ReachabilityHandle: one callback after start(), then one for every change that the test
/// announces, always through the main loop and never after stop(). Main thread, except
/// setFlags() and internetFlags(), which any thread may use. Handles may outlive the source.
class FakeReachabilitySource final : public ReachabilitySource {
 public:
  /// `loop` delivers the callbacks; it must outlive the source and its handles.
  explicit FakeReachabilitySource(MainLoop& loop) : state_(std::make_shared<State>(loop)) {}

  /// Sets what every handle and internetFlags() return from now on. Calls nothing: for the callbacks, call
  /// announceChange() too.
  void setFlags(std::optional<std::uint32_t> flags) {
    MutexLock lock(state_->mutex);
    state_->flags = flags;
  }

  /// Queues the callback of every started handle on the main loop, as after a change of the network.
  void announceChange() {
    for (const std::weak_ptr<Watch>& weak : state_->watches) {
      if (std::shared_ptr<Watch> watch = weak.lock()) {
        announce(state_->loop, watch);
      }
    }
  }

  /// Makes watch() return null from now on, as for a name that cannot be a host name.
  void setWatchFails(bool fails) { watchFails_ = fails; }

  /// Every target given to watch(), oldest first, also those that were refused.
  const std::vector<ReachabilityTarget>& targets() const { return targets_; }

  int startedCount() const { return state_->started; }  ///< Successful start() calls so far.
  std::unique_ptr<ReachabilityHandle> watch(const ReachabilityTarget& target) override {
    targets_.push_back(target);
    if (watchFails_) {
      return nullptr;
    }
    auto handle = std::make_unique<Handle>(state_);
    state_->watches.push_back(handle->watch());
    return handle;
  }

  std::optional<std::uint32_t> internetFlags() override {
    MutexLock lock(state_->mutex);
    return state_->flags;
  }

  void connectionObserved(const std::string& /*host*/, int /*port*/, bool /*connected*/) override {}

 private:
  struct Watch {
    std::function<void()> changed;
    unsigned run = 0;  // Counts starts and stops: a callback queued for an earlier run is dropped.
  };

  struct State {
    explicit State(MainLoop& mainLoop) : loop(mainLoop) {}

    MainLoop& loop;
    std::vector<std::weak_ptr<Watch>> watches;
    int started = 0;
    Mutex mutex;
    std::optional<std::uint32_t> flags KESU_GUARDED_BY(mutex) = kFlagReachable;
  };

  class Handle final : public ReachabilityHandle {
   public:
    explicit Handle(std::shared_ptr<State> state) : state_(std::move(state)) {}
    ~Handle() override { endWatch(); }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    std::optional<std::uint32_t> flags() override {
      MutexLock lock(state_->mutex);
      return state_->flags;
    }

    bool start(std::function<void()> changed) override {
      if (watch_->changed || !changed) {
        return false;
      }
      watch_->changed = std::move(changed);
      ++watch_->run;
      ++state_->started;
      announce(state_->loop, watch_);
      return true;
    }

    void stop() override { endWatch(); }

    const std::shared_ptr<Watch>& watch() const { return watch_; }

   private:
    void endWatch() {
      if (watch_->changed) {
        watch_->changed = nullptr;
        ++watch_->run;
      }
    }

    std::shared_ptr<State> state_;
    std::shared_ptr<Watch> watch_ = std::make_shared<Watch>();
  };

  static void announce(MainLoop& loop, const std::shared_ptr<Watch>& watch) {
    if (!watch->changed) {
      return;
    }
    loop.post([weak = std::weak_ptr<Watch>(watch), run = watch->run] {
      const std::shared_ptr<Watch> alive = weak.lock();
      if (alive && alive->run == run && alive->changed) {
        // A copy: the callback may stop the watch and so destroy the function that is running.
        const std::function<void()> changed = alive->changed;
        changed();
      }
    });
  }

  std::shared_ptr<State> state_;
  std::vector<ReachabilityTarget> targets_;
  bool watchFails_ = false;
};

}  // namespace kesu::testing
