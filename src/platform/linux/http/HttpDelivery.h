#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/http/HttpJob.h"

namespace kesu {

/// Completes jobs, counts those that are outstanding, and tells the observer of attempts to connect. Its tasks on the
/// main loop may run after the client was destroyed.
class HttpDelivery {
 public:
  explicit HttpDelivery(MainLoop& loop);

  /// Counts one more completion that will follow. Any thread.
  void expect() { ++state_->pending; }
  /// Counts the expected completions that have not begun to run. Any thread.
  std::size_t pendingCount() const { return state_->pending; }

  /// Completes a job: one in the background at once, any other in a task of the main loop, which calls the observer
  /// before. `connected`: how the attempt to connect ended, if there was one. Network thread.
  void deliver(HttpJob& job, HttpReply reply, std::optional<bool> connected);

  /// Completes a job that was never begun with HttpError::Cancelled, in a task of the main loop. Any thread.
  void refuse(HttpJob& job);

  /// Sets the observer of attempts. Main thread.
  void setObserver(HttpClient::ConnectObserver observer) { state_->observer = std::move(observer); }

 private:
  using Clock = std::chrono::steady_clock;

  struct State {
    void tell(const std::string& host, int port, bool connected) const;

    std::atomic<std::size_t> pending{0};
    HttpClient::ConnectObserver observer;  ///< Main thread only.
  };
  /// The last attempt at one origin for which a task was posted.
  struct Told {
    std::string host;
    int port = 0;
    bool connected = false;
    Clock::time_point at;
    std::shared_ptr<std::atomic<bool>> isWaiting;  ///< A task for it alone has not run yet.
  };

  void post(HttpJob& job, HttpReply reply, std::optional<bool> connected);
  void postAttempt(const Told& told);
  Told* noteNews(const HttpOrigin& origin, bool connected);
  Told& toldOf(const HttpOrigin& origin);

  MainLoop& loop_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();
  std::vector<Told> told_;  ///< Network thread only.
};

}  // namespace kesu
