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
/// HTTP/1.1, and HTTP/2 where TLS negotiates it. The requests to one host wait in a queue of their own for one of its
/// connections; when no connection can be made, all that wait for that host fail with it. A connected request fails
/// when no byte is sent or received for the idle timeout; when its host has sent nothing on any connection for as long,
/// all that wait for the host fail as well, and so they do when a request reaches its deadline and the host has ended
/// no reply since that request began, nor for the idle timeout. Redirects are followed as HttpRedirect.h says. No proxy
/// (not even one of the environment), no cookies, no .netrc, no credentials from URLs: only hosts that the caller named
/// are contacted, with what the caller gave. `loop` must outlive the client. In a forked child every operation does
/// nothing, and the requests that it sends are dropped.
class LinuxHttpClient final : public HttpClient {
 public:
  explicit LinuxHttpClient(MainLoop& loop, LinuxHttpClientOptions options = {});
  ~LinuxHttpClient() override;

  void send(HttpRequest request, Completion completion) override;
  void sendInBackground(HttpRequest request, Completion completion) override;
  std::size_t pendingCount() override;
  void shutdown(double graceSeconds) override;
  void setConnectObserver(ConnectObserver observer) override;

  /// Registers the client's exit handler: a handler that is registered after this call runs before the client stops its
  /// thread. Without it the client may stop first (after a grace of 40 ms), and later requests are cancelled. Cheap;
  /// any thread.
  static void prepareExit();

 private:
  const ForkGuard forkGuard_;
  std::unique_ptr<HttpNetwork> network_;
};

}  // namespace kesu
