#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <thread>

#include "foundation/Mutex.h"
#include "tools/loopback/Exchange.h"

struct ssl_ctx_st;

namespace kesu::loopback {

class Connection;

/// An HTTP/1.1 server on 127.0.0.1, with or without TLS. One thread accepts and one serves each connection: the handler
/// is called on several threads at once, for one request at a time per connection.
class Server {
 public:
  using Handler = std::function<Reply(Request&)>;

  /// With `tls` every connection is encrypted; the context must outlive the server.
  explicit Server(Handler handler, ssl_ctx_st* tls = nullptr);

  /// Stops.
  ~Server();

  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Takes a port; 0 takes any that is free. False when it is taken. Connections wait from here on for start().
  bool bind(int port);

  int port() const { return port_; }

  /// Starts serving, again after stop() too. Needs a successful bind(). False when another program has taken the port
  /// meanwhile. Threads that start here inherit the caller's signal mask.
  bool start();

  /// Closes every connection and waits for handlers that run (isGone() returns true for them). The port stays reserved,
  /// and connections are refused. May be called twice; by one thread at a time, as start().
  void stop();

  /// From now on connections are broken with RST as soon as the first bytes are there, which stay unread.
  void setResetOnAccept(bool reset);

  /// Returns how many connections were accepted so far.
  std::size_t connectionCount();

  /// Waits until at most that many connections are open; false when that takes longer. What a sender that has ended
  /// left in its connections is served until then, and lost by stop().
  bool waitForConnections(int most, std::chrono::milliseconds patience);

 private:
  struct Served;

  void acceptConnections();
  bool countConnection();
  void add(int socket);
  void removeEnded(std::list<std::unique_ptr<Served>>& ended) KESU_REQUIRES(mutex_);
  void serve(Served& served);
  bool serveRequest(Served& served);

  const Handler handler_;
  ssl_ctx_st* const tls_;
  int port_ = 0;
  int socket_ = -1;  // Bound from bind() on, listening until stop().
  std::thread acceptor_;

  Mutex mutex_;
  std::condition_variable_any ended_;
  bool resetOnAccept_ KESU_GUARDED_BY(mutex_) = false;
  std::size_t accepted_ KESU_GUARDED_BY(mutex_) = 0;
  int open_ KESU_GUARDED_BY(mutex_) = 0;  // Accepted and not ended yet.
  std::list<std::unique_ptr<Served>> served_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::loopback
