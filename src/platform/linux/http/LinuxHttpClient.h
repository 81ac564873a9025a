#pragma once

#include <kesu/platform/HttpClient.h>
#include <kesu/platform/MainLoop.h>

#include <cstddef>
#include <memory>

#include "platform/linux/base/ForkGuard.h"
#include "platform/linux/http/LinuxHttpClientOptions.h"

namespace kesu {

class HttpNetwork;

/// The HTTP client of Linux systems: libcurl on one thread, which the first send() starts.
///
/// HTTP/1.1, and HTTP/2 where TLS agrees on it. Requests to one host wait in a queue of their own for one of its
/// connections, and so does nothing else; when no connection can be made, everything that waits for that host fails
/// with it. A connected request fails when nothing moves for the idle timeout; when its host has said nothing to
/// anybody for as long, everything that waits for the host fails as well. There is no limit on the whole. Redirects are
/// followed as HttpRedirect.h says. No proxy (not even one of the environment), no cookies, no .netrc, no credentials
/// from URLs: nothing goes to a host that was not named, and nothing is sent that was not given. `loop` must outlive
/// the client. A forked child has no network thread: there every operation does nothing, and the requests that it sends
/// are dropped.
class LinuxHttpClient final : public HttpClient {
 public:
  explicit LinuxHttpClient(MainLoop& loop, LinuxHttpClientOptions options = {});
  ~LinuxHttpClient() override;

  void send(HttpRequest request, Completion completion) override;
  std::size_t pendingCount() override;
  void shutdown(double graceSeconds) override;
  void setConnectObserver(ConnectObserver observer) override;

  /// Orders the exit handlers: a handler registered after this call runs before the client stops its thread at exit.
  /// Without it the client may stop first (after a grace of 40 ms), and what is sent later is cancelled. Cheap; any
  /// thread.
  static void prepareExit();

 private:
  const ForkGuard forkGuard_;
  std::unique_ptr<HttpNetwork> network_;
};

}  // namespace kesu
