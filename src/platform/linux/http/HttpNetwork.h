#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "foundation/Mutex.h"
#include "platform/linux/http/HttpDelivery.h"
#include "platform/linux/http/HttpEngine.h"
#include "platform/linux/http/HttpJob.h"
#include "platform/linux/http/LinuxHttpClientOptions.h"

namespace kesu {

/// The network thread of one client, with its inbox and its shutdown. The first request starts the thread, so that an
/// unused client costs nothing. Any thread; the destructor stops without grace.
class HttpNetwork {
 public:
  HttpNetwork(MainLoop& loop, LinuxHttpClientOptions options);
  ~HttpNetwork();

  HttpNetwork(const HttpNetwork&) = delete;
  HttpNetwork& operator=(const HttpNetwork&) = delete;

  /// Sends a request; `isInBackground`: its completion runs on the network thread.
  void send(HttpRequest request, HttpClient::Completion completion, bool isInBackground);

  /// Waits at most `graceSeconds` for outstanding replies, then fails the rest and joins the thread. Requests that are
  /// sent meanwhile or later are cancelled. A second caller waits for the first. Not on the network thread.
  void stop(double graceSeconds);

  HttpDelivery& delivery() { return delivery_; }

 private:
  using Clock = HttpEngine::Clock;

  bool accept(std::unique_ptr<HttpJob>& job, bool& wakes);
  void wake();
  bool startThread() KESU_REQUIRES(mutex_);
  void run();
  bool fallAsleep(const HttpEngine& engine);
  std::optional<Clock::time_point> takeInbox(HttpEngine& engine);
  void setWakeTarget(const HttpEngine* engine);

  const LinuxHttpClientOptions options_;
  HttpDelivery delivery_;

  std::vector<std::unique_ptr<HttpJob>> ended_;  ///< Completed since the thread slept. Network thread only.

  std::once_flag registered_;  ///< With HttpExit, before the thread starts.
  Mutex stopMutex_;            ///< Locked during all of stop(), before mutex_.
  Mutex mutex_;
  std::thread thread_ KESU_GUARDED_BY(mutex_);
  std::vector<std::unique_ptr<HttpJob>> inbox_ KESU_GUARDED_BY(mutex_);
  std::vector<std::unique_ptr<HttpJob>> finished_ KESU_GUARDED_BY(mutex_);  ///< To be destroyed by those who send.
  bool isAsleep_ KESU_GUARDED_BY(mutex_) = false;   ///< The thread waits for the network or for a wake-up.
  std::string blockedUrl_ KESU_GUARDED_BY(mutex_);  ///< A request for it is no reason to wake up.
  std::optional<Clock::time_point> stopTime_ KESU_GUARDED_BY(mutex_);  ///< Set once stop() was called.

  Mutex wakeMutex_;
  const HttpEngine* wakeTarget_ KESU_GUARDED_BY(wakeMutex_) = nullptr;  ///< Null while there is no engine.
};

}  // namespace kesu
