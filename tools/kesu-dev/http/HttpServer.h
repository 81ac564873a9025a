#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct ssl_ctx_st;

namespace kesu::dev {

/// One request, as a handler sees it. Lives as long as the handler runs.
struct HttpRequest {
  std::string method;
  std::string path;  // Without the query, percent-decoded.
  std::vector<std::pair<std::string, std::string>> headers;
  std::vector<std::pair<std::string, std::string>> query;

  /// Reads the body. False when the sender broke off or sent more than the limit of 16 MB (an error reply then reaches
  /// only the latter). A handler that never calls it answers early, and the connection is closed after that.
  std::function<bool(std::string& body)> readBody;

  /// Whether the sender has gone, or the server is stopping. For handlers that take their time.
  std::function<bool()> isGone;

  /// The first header of that name (any case), or an empty text.
  std::string_view header(std::string_view name) const;

  /// The query parameter of that name.
  std::optional<std::string_view> parameter(std::string_view name) const;
};

/// What a handler answers.
struct HttpReply {
  using Write = std::function<bool(std::string_view)>;

  int status = 200;
  std::string contentType = "application/json";
  std::string body;
  std::vector<std::pair<std::string, std::string>> headers;

  /// Close the connection at once and send nothing.
  bool close = false;

  /// When set, the body is what this function writes, piece by piece, until it returns. `write` is false once the
  /// receiver has gone.
  std::function<void(const Write& write)> stream;

  static HttpReply closed();
  static HttpReply error(int status, const std::string& text);
};

/// An HTTP/1.1 server on 127.0.0.1, with or without TLS. The handler is called for every request, on several threads at
/// once, one request at a time for a connection.
class HttpServer {
 public:
  using Handler = std::function<HttpReply(HttpRequest&)>;

  /// With `tls` every connection is encrypted; the context must outlive the server.
  explicit HttpServer(Handler handler, ssl_ctx_st* tls = nullptr);

  /// Stops.
  ~HttpServer();

  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Takes a port of 127.0.0.1; 0 takes any that is free. False when it is taken.
  bool bind(int port);

  /// The port taken.
  int port() const { return port_; }

  /// Starts serving. Needs a successful bind(); threads that start here inherit the caller's signal mask.
  void start();

  /// Waits until at most that many connections are open; false when the time is up before. What a sender that has
  /// ended left in its connections is served until then, and lost by stop().
  bool waitForConnections(int most, std::chrono::milliseconds patience);

  /// Closes every connection, waits for handlers that run (isGone() tells them) and ends. May be called twice.
  void stop();

 private:
  class Implementation;

  std::unique_ptr<Implementation> implementation_;
  int port_ = 0;
};

}  // namespace kesu::dev
