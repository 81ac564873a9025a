#pragma once

#include <curl/curl.h>
#include <poll.h>

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/base/WakeEvent.h"

namespace kesu {

/// Watches the sockets and the timer of a multi handle, and lets libcurl run only the transfers whose sockets are
/// ready. (curl_multi_perform() would run all of them, with a poll() each.) Confined to the network thread, but for
/// wake().
class HttpSockets {
 public:
  using Clock = std::chrono::steady_clock;

  HttpSockets();

  HttpSockets(const HttpSockets&) = delete;
  HttpSockets& operator=(const HttpSockets&) = delete;

  /// Watches for a multi handle, which must be destroyed first.
  void attach(CURLM* multi);

  /// Ends the present wait(), or the next one. Any thread.
  void wake() const { wakeEvent_.signal(); }

  /// Sleeps until a socket is ready, the timer of libcurl is due, somebody calls wake(), or `until`.
  void wait(std::optional<Clock::time_point> until);

  /// Runs the transfers that were ready at the end of the last wait(), and those whose timer is due.
  void run();

 private:
  void watch(curl_socket_t socket, int what);

  static int onSocket(CURL*, curl_socket_t socket, int what, void* self, void*);
  static int onTimer(CURLM*, long milliseconds, void* self);

  const WakeEvent wakeEvent_;
  CURLM* multi_ = nullptr;
  std::vector<pollfd> watched_;  ///< The first one is that of the wake event.
  std::vector<std::pair<curl_socket_t, int>> ready_;
  std::optional<Clock::time_point> timerDue_;
};

}  // namespace kesu
