#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>

#include "platform/linux/http/HttpTransfer.h"

namespace kesu {

/// Posts replies to the main loop, one task each, and counts those that are outstanding. The tasks may run after the
/// client was destroyed. deliver(), expect() and pendingCount() may be called from any thread.
class HttpDelivery {
 public:
  explicit HttpDelivery(MainLoop& loop);

  /// Counts one more completion that will follow.
  void expect() { ++state_->pending; }
  /// Counts the expected completions that have not begun to run.
  std::size_t pendingCount() const { return state_->pending; }

  /// Posts a completion to the main loop; the observer is called before it when there was an attempt.
  void deliver(HttpClient::Completion completion, HttpReply reply, std::optional<HttpAttempt> attempt);

  /// Sets the observer of attempts. Main thread.
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
