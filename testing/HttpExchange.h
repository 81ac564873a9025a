#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kesu::testing {

/// Sends requests through a client and keeps what comes back. Belongs to the main thread, which pumps the loop in
/// awaitAll(); must outlive the requests that it has sent.
class HttpExchange {
 public:
  HttpExchange(HttpClient& client, MainLoop& loop) : client_(client), loop_(loop) {}

  static HttpRequest get(std::string url) {
    HttpRequest request;
    request.url = std::move(url);
    return request;
  }
  static HttpRequest post(std::string url, std::string body = "{}") {
    HttpRequest request = get(std::move(url));
    request.method = "POST";
    request.body = std::move(body);
    return request;
  }

  void send(HttpRequest request) {
    replies_.emplace_back();
    Slot& slot = replies_.back();
    client_.send(std::move(request), [this, &slot](HttpReply reply) {
      ++slot.calls;
      slot.onPumpingThread = slot.onPumpingThread && std::this_thread::get_id() == thread_;
      slot.reply = std::move(reply);
      order_.push_back(&slot);
    });
  }

  /// Pumps until everything is completed; false when that took longer than `seconds`.
  bool awaitAll(double seconds = 30) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (order_.size() < replies_.size() && std::chrono::steady_clock::now() < deadline) {
      if (loop_.pump() == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    }
    return order_.size() >= replies_.size();
  }

  /// Sends one request and waits for its reply.
  HttpReply fetch(HttpRequest request) {
    send(std::move(request));
    awaitAll();
    return replies_.back().reply;
  }

  std::size_t completed() const { return order_.size(); }
  const HttpReply& reply(std::size_t index) const { return replies_.at(index).reply; }

  /// How many replies have this error.
  std::size_t count(HttpError error) const {
    std::size_t found = 0;
    for (const Slot& slot : replies_) {
      found += slot.calls > 0 && slot.reply.error == error ? 1U : 0U;
    }
    return found;
  }

  /// Whether every request was completed once, on the thread that made this object.
  bool eachCompletedOnce() const {
    for (const Slot& slot : replies_) {
      if (slot.calls != 1 || !slot.onPumpingThread) {
        return false;
      }
    }
    return true;
  }

  /// Whether the completions came in the order of the requests.
  bool inOrder() const {
    for (std::size_t index = 0; index < order_.size(); ++index) {
      if (order_[index] != &replies_[index]) {
        return false;
      }
    }
    return true;
  }

 private:
  struct Slot {
    HttpReply reply;
    int calls = 0;
    bool onPumpingThread = true;
  };

  HttpClient& client_;
  MainLoop& loop_;
  const std::thread::id thread_ = std::this_thread::get_id();
  std::deque<Slot> replies_;  // Slots stay where they are.
  std::vector<const Slot*> order_;
};

}  // namespace kesu::testing
