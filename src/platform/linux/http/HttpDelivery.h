#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>

#include "platform/linux/http/HttpTransfer.h"

namespace kesu {

/// Brings replies to the main loop, one task each, and counts what is still to come. Outlived by the tasks it has
/// posted: they may run after the client is gone. deliver(), expect() and pendingCount() may be called from any thread.
class HttpDelivery {
 public:
  explicit HttpDelivery(MainLoop& loop);

  /// One more completion will follow.
  void expect() { ++state_->pending; }
  /// Expected completions that have not begun to run.
  std::size_t pendingCount() const { return state_->pending; }

  /// Posts the completion, after word of the attempt for the observer, to the main loop.
  void deliver(HttpClient::Completion completion, HttpReply reply, std::optional<HttpAttempt> attempt);

  /// Main thread.
  void setObserver(HttpClient::ConnectObserver observer) { state_->observer = std::move(observer); }

 private:
  struct State {
    std::atomic<std::size_t> pending{0};
    HttpClient::ConnectObserver observer;  ///< Main thread only.
  };

  MainLoop& loop_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace kesu
