#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// An HttpClient that sends nothing: it keeps the requests in the order of send(), and the test answers them.
///
/// A completion runs inside the test's own call (answer(), failAll(), shutdown() ...), which therefore acts as the
/// client's thread and as the main loop; with a main loop those of send() are posted there. Any thread may send; only
/// the test's thread answers.
class FakeHttpClient final : public HttpClient {
 public:
  FakeHttpClient() = default;
  explicit FakeHttpClient(MainLoop& loop) : loop_(&loop) {}

  /// Makes a reply with this status.
  static HttpReply reply(int status, std::string body = {}) {
    HttpReply made;
    made.status = status;
    made.body = std::move(body);
    return made;
  }

  /// Makes the reply of a failed request. `status` is for replies that broke off after the head.
  static HttpReply failure(HttpError error, int status = 0) {
    HttpReply made;
    made.status = status;
    made.error = error;
    made.errorText = "failed by the test";
    return made;
  }

  void send(HttpRequest request, Completion completion) override {
    add(std::move(request), {std::move(completion), loop_});
  }

  void sendInBackground(HttpRequest request, Completion completion) override {
    add(std::move(request), {std::move(completion), nullptr});
  }

  std::size_t pendingCount() override {
    const MutexLock lock(mutex_);
    return pending_.size();
  }

  /// Fails all requests that the test has not answered, without waiting.
  void shutdown(double) override {
    {
      const MutexLock lock(mutex_);
      if (std::exchange(down_, true)) {
        return;
      }
    }
    failAll(HttpError::Cancelled);
  }

  void setConnectObserver(ConnectObserver /*observer*/) override {}

  /// All requests sent before shutdown(), answered or not, in order.
  std::vector<HttpRequest> requests() {
    const MutexLock lock(mutex_);
    return requests_;
  }

  std::size_t requestCount() {
    const MutexLock lock(mutex_);
    return requests_.size();
  }

  /// The `index`-th request sent; throws std::out_of_range when there are fewer.
  HttpRequest request(std::size_t index) {
    const MutexLock lock(mutex_);
    return requests_.at(index);
  }

  bool isPending(std::size_t index) {
    const MutexLock lock(mutex_);
    return pending_.count(index) != 0;
  }

  /// Completes the `index`-th request. Returns false, and does nothing, when it is not pending.
  bool answer(std::size_t index, HttpReply made) {
    Pending completed;
    {
      const MutexLock lock(mutex_);
      const auto found = pending_.find(index);
      if (found == pending_.end()) {
        return false;
      }
      completed = std::move(found->second);
      pending_.erase(found);
    }
    complete(std::move(completed), std::move(made));
    return true;
  }

  bool answer(std::size_t index, int status, std::string body = {}) {
    return answer(index, reply(status, std::move(body)));
  }
  bool fail(std::size_t index, HttpError error) { return answer(index, failure(error)); }

  /// Complete the requests that are pending now, oldest first, but not those that the completions send. Return how many
  /// were completed.
  std::size_t answerAll(int status, const std::string& body = {}) { return completeAll(reply(status, body)); }
  std::size_t failAll(HttpError error) { return completeAll(failure(error)); }

  /// Drops the pending requests, as the death of the process does.
  void discardPending() {
    const MutexLock lock(mutex_);
    pending_.clear();
  }

 private:
  struct Pending {
    Completion completion;
    MainLoop* loop = nullptr;  ///< Where it runs; null: inside the test's own call.
  };

  void add(HttpRequest request, Pending made) {
    const MutexLock lock(mutex_);
    if (down_) {
      if (loop_ != nullptr) {  // Without one nobody could be told: no completion may run inside send().
        loop_->post([completion = std::move(made.completion)] { completion(failure(HttpError::Cancelled)); });
      }
      return;
    }
    pending_.emplace(requests_.size(), std::move(made));
    requests_.push_back(std::move(request));
  }

  std::size_t completeAll(const HttpReply& made) {
    std::vector<std::size_t> indexes;
    {
      const MutexLock lock(mutex_);
      for (const auto& entry : pending_) {
        indexes.push_back(entry.first);
      }
    }
    std::size_t completed = 0;
    for (const std::size_t index : indexes) {
      completed += answer(index, made) ? 1U : 0U;
    }
    return completed;
  }

  static void complete(Pending completed, HttpReply made) {
    if (completed.loop == nullptr) {
      completed.completion(std::move(made));
      return;
    }
    completed.loop->post([completion = std::move(completed.completion), made = std::move(made)]() mutable {
      completion(std::move(made));
    });
  }

  MainLoop* loop_ = nullptr;
  Mutex mutex_;
  bool down_ KESU_GUARDED_BY(mutex_) = false;
  std::vector<HttpRequest> requests_ KESU_GUARDED_BY(mutex_);
  std::map<std::size_t, Pending> pending_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
