#pragma once

#include <kesu/Export.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kesu {

/// One HTTP request. Header names and values are sent in this order; CR, LF and NUL are taken out of both.
struct HttpRequest {
  std::string method = "GET";
  std::string url;  ///< Absolute http: or https: URL; anything else ends in HttpError::BadUrl. User and password in it
                    ///< are never sent.
  std::vector<std::pair<std::string, std::string>> headers;  ///< With "Accept-Encoding: gzip" such replies are decoded.
  std::string body;  ///< Sent as it is, with its true Content-Length (whatever the headers say).
  std::size_t replyLimit =
      std::size_t{4} * 1024 * 1024;  ///< Longest reply body in bytes (after decoding) that is accepted.
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

/// What came of a request. A status and an error may both be there: a reply whose body was cut has both.
struct HttpReply {
  int status = 0;                   ///< Status code of the reply; 0 when none came.
  std::optional<std::string> body;  ///< Decoded body: present (perhaps empty) when a reply came without error.
  HttpError error = HttpError::None;
  std::string errorText;  ///< The system's words for the error; empty without one.
};

/// Sends HTTP requests. TLS certificates are always verified; no setting switches that off.
///
/// send() may be called from any thread and never blocks. Each request is completed exactly once, on the main loop;
/// never inside send(). A request's body only ever goes to the scheme, host and port that the request named.
class KESU_API HttpClient {
 public:
  using Completion = std::function<void(HttpReply)>;
  /// Told on the main loop, at most once a request and before its completion, about an attempt to connect: the host,
  /// the port and whether a connection came about. One that was kept from before counts as well.
  using ConnectObserver = std::function<void(const std::string& host, int port, bool connected)>;

  virtual ~HttpClient() = default;

  /// Sends a request. After shutdown() it is completed with HttpError::Cancelled.
  virtual void send(HttpRequest request, Completion completion) = 0;

  /// Requests that were sent and whose completion has not begun to run. Any thread.
  virtual std::size_t pendingCount() = 0;

  /// Ends the client, on any thread, also while the process exits: waits at most `graceSeconds` for replies that are on
  /// their way, then fails everything that is left with HttpError::Cancelled. When it returns, every completion has
  /// been handed to the main loop and no thread of the client runs any more. A second call does nothing.
  virtual void shutdown(double graceSeconds) = 0;

  /// Sets the one observer of connections (reachability learns from them); an empty function removes it. Main thread.
  virtual void setConnectObserver(ConnectObserver observer) = 0;
};

}  // namespace kesu
