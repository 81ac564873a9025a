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
/// setFlags(), internetFlags(), connectionObserved() and the records of observations, which any thread may use. Handles
/// may outlive the source.
class FakeReachabilitySource final : public ReachabilitySource {
 public:
  /// One call of connectionObserved().
  struct Observation {
    std::string host;
    int port = 0;
    bool connected = false;
  };

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

  /// Makes start() of every handle fail from now on, or succeed again.
  void setStartFails(bool fails) { state_->startFails = fails; }

  /// Makes watch() return null from now on, as for a name that cannot be a host name.
  void setWatchFails(bool fails) { watchFails_ = fails; }

  /// Every target given to watch(), oldest first, also those that were refused.
  const std::vector<ReachabilityTarget>& targets() const { return targets_; }

  int startedCount() const { return state_->started; }  ///< Successful start() calls so far.
  int stoppedCount() const { return state_->stopped; }  ///< Watches that ended, by stop() or with their handle.

  /// Every call of connectionObserved(), oldest first.
  std::vector<Observation> observations() const {
    MutexLock lock(state_->mutex);
    return state_->observations;
  }

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

  void connectionObserved(const std::string& host, int port, bool connected) override {
    MutexLock lock(state_->mutex);
    state_->observations.push_back({host, port, connected});
  }

 private:
  struct Watch {
    std::function<void()> changed;
    unsigned run = 0;  // Counts starts and stops: a callback queued for an earlier run is dropped.
  };

  struct State {
    explicit State(MainLoop& mainLoop) : loop(mainLoop) {}

    MainLoop& loop;
    std::vector<std::weak_ptr<Watch>> watches;
    bool startFails = false;
    int started = 0;
    int stopped = 0;
    mutable Mutex mutex;
    std::optional<std::uint32_t> flags KESU_GUARDED_BY(mutex) = kFlagReachable;
    std::vector<Observation> observations KESU_GUARDED_BY(mutex);
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
      if (state_->startFails || watch_->changed || !changed) {
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
        ++state_->stopped;
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
