#pragma once

#include <kesu/Export.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kesu {

/// One HTTP request. Headers are sent in this order; CR, LF and NUL are removed from their names and values.
struct HttpRequest {
  std::string method = "GET";
  std::string url;  ///< Absolute http: or https: URL; anything else ends in HttpError::BadUrl. User and password in it
                    ///< are never sent.
  std::vector<std::pair<std::string, std::string>> headers;  ///< With "Accept-Encoding: gzip" such replies are decoded.
  std::string body;  ///< Sent unchanged, with its true Content-Length (whatever the headers say).
  std::size_t replyLimit = std::size_t{4} * 1024 * 1024;  ///< Longest accepted reply body in bytes, after decoding.
};

/// Why a request did not end in a complete reply.
enum class HttpError {
  None,            ///< The reply is complete.
  BadUrl,          ///< Not an absolute http(s) URL.
  CannotResolve,   ///< The host name has no address.
  CannotConnect,   ///< Refused, unreachable, or no connection within the connect timeout.
  Tls,             ///< The server's certificate or the TLS handshake was not acceptable.
  ConnectionLost,  ///< The connection broke after it was made, or the body was cut short or could not be decoded.
  TimedOut,        ///< Nothing was sent or received for the idle timeout.
  TooLarge,        ///< The reply was longer than HttpRequest::replyLimit.
  BadRedirect,     ///< More than 16 redirects, to another scheme, or one that would carry the body to another host.
  Cancelled        ///< The client was shut down before the reply was complete.
};

/// The outcome of a request. Status and error may both be set: a reply whose body was cut short has both.
struct HttpReply {
  int status = 0;                   ///< Status code of the reply; 0 when none came.
  std::optional<std::string> body;  ///< Decoded body: present (perhaps empty) when a reply came without error.
  HttpError error = HttpError::None;
  std::string errorText;  ///< The system's text for the error; empty without one.
};

/// Sends HTTP requests. TLS certificates are always verified; no setting switches that off.
///
/// send() may be called from any thread and never blocks. Each request is completed exactly once, on the main loop,
/// never inside send(). A body is only ever sent to the scheme, host and port that its request named.
class KESU_API HttpClient {
 public:
  using Completion = std::function<void(HttpReply)>;
  /// Called on the main loop, at most once per request and before its completion, after an attempt to connect. A
  /// connection that was kept from before counts as well.
  using ConnectObserver = std::function<void(const std::string& host, int port, bool connected)>;

  virtual ~HttpClient() = default;

  /// Sends a request. After shutdown() it is completed with HttpError::Cancelled.
  virtual void send(HttpRequest request, Completion completion) = 0;

  /// Sends a request whose completion need not wait for the main loop: it may be called on a thread of the client, as
  /// soon as the outcome is known, also inside shutdown(). It must be short and must not call the client, but for
  /// sendInBackground(). The default completes on the main loop.
  virtual void sendInBackground(HttpRequest request, Completion completion) {
    send(std::move(request), std::move(completion));
  }

  /// Counts the requests that were sent and whose completion has not begun to run. Any thread.
  virtual std::size_t pendingCount() = 0;

  /// Shuts the client down: waits at most `graceSeconds` for outstanding replies, then fails the rest with
  /// HttpError::Cancelled. When it returns, every completion was posted to the main loop and no thread of the client is
  /// running. A second call does nothing. Any thread, also while the process exits.
  virtual void shutdown(double graceSeconds) = 0;

  /// Sets the one observer of connections, from which reachability learns; an empty function removes it. Main thread.
  virtual void setConnectObserver(ConnectObserver observer) = 0;
};

}  // namespace kesu
