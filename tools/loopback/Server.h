#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "tools/loopback/Exchange.h"

struct ssl_ctx_st;

namespace kesu::loopback {

/// An HTTP/1.1 server on 127.0.0.1, with or without TLS. The handler is called for every request, on several threads at
/// once, one request at a time for a connection.
class Server {
 public:
  using Handler = std::function<Reply(Request&)>;

  /// With `tls` every connection is encrypted; the context must outlive the server.
  explicit Server(Handler handler, ssl_ctx_st* tls = nullptr);

  /// Stops.
  ~Server();

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

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

}  // namespace kesu::loopback
