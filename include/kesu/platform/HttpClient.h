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
  /// Only the status counts. A body of more than a few kilobytes is no error then: it is cut, and the connection
  /// closed. A redirect's is read as usual.
  bool ignoresBody = false;
  /// The body is what the request is for: a redirect that would continue without it (301 and 302 after a POST, 303) is
  /// not followed, and its own reply is the outcome.
  bool isFutileWithoutBody = false;
  /// Ends the request with HttpError::TimedOut, however much still comes in. Counts from the moment it gets its turn,
  /// through connecting, interim replies and redirects: not while it waits behind others to the same host.
  double deadlineSeconds = 120;
};

/// Why a request did not end in a complete reply.
enum class HttpError {
  None,            ///< The reply is complete.
  BadUrl,          ///< Not an absolute http(s) URL.
  CannotResolve,   ///< The host name has no address.
  CannotConnect,   ///< Refused, unreachable, or no connection within the connect timeout.
  Tls,             ///< The server's certificate or the TLS handshake was not acceptable.
  ConnectionLost,  ///< The connection broke after it was made, or the body was cut short or could not be decoded.
  TimedOut,        ///< Nothing was sent or received for the idle timeout, or HttpRequest::deadlineSeconds have passed.
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
/// Requests may be sent from any thread; that never blocks. Each is completed exactly once, never inside the call that
/// sends it. A body is only ever sent to the scheme, host and port that its request named.
class KESU_API HttpClient {
 public:
  using Completion = std::function<void(HttpReply)>;
  /// Called on the main loop, at most once per request, after an attempt to connect. A connection that was kept from
  /// before counts as well. For send(): before the completion. For sendInBackground(): in no order with it, and not for
  /// a success when the last attempt to this host and port succeeded within the last second.
  using ConnectObserver = std::function<void(const std::string& host, int port, bool connected)>;

  virtual ~HttpClient() = default;

  /// Sends a request that is completed on the main loop. After shutdown() it is completed with HttpError::Cancelled.
  virtual void send(HttpRequest request, Completion completion) = 0;

  /// Sends a request whose completion does not wait for the main loop: it runs on a thread of the client as soon as the
  /// outcome is known. It must be short, must not throw, and must not call the client but for send() and
  /// sendInBackground(). It is destroyed on any thread, maybe inside a later call of these two. The one exception: when
  /// shutdown() has begun, or no thread can be started, the request is completed with HttpError::Cancelled on the main
  /// loop, because the caller may hold locks here.
  virtual void sendInBackground(HttpRequest request, Completion completion) = 0;

  /// Counts the requests that were sent and whose completion has not begun to run. Any thread.
  virtual std::size_t pendingCount() = 0;

  /// Shuts the client down: waits at most `graceSeconds` for outstanding replies, then fails the rest with
  /// HttpError::Cancelled. When it returns, every completion was posted to the main loop, those of sendInBackground()
  /// have run, and no thread of the client is running. A second call does nothing. Any thread but those on which
  /// completions of sendInBackground() run; also while the process exits.
  virtual void shutdown(double graceSeconds) = 0;

  /// Sets the one observer of connections, from which reachability learns; an empty function removes it. Main thread.
  virtual void setConnectObserver(ConnectObserver observer) = 0;
};

}  // namespace kesu
