#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/Mutex.h"

namespace kesu::testing {

/// A request as it came over the wire.
struct ServedRequest {
  std::string method;
  std::string target;  ///< Path and query.
  std::string head;    ///< The raw bytes of request line and headers, with the empty line that ends them.
  std::vector<std::pair<std::string, std::string>> headers;  ///< In the order of the wire.
  std::string body;
  std::size_t connection = 0;  ///< The connection that carried it, counted from 0.

  /// The value of the first header of that name (letters compared without case); empty without one.
  std::string header(const std::string& name) const;
};

/// What the server does with one request.
struct ServerAction {
  enum class Kind {
    Reply,              ///< Sends status, headers, Content-Length and body.
    Raw,                ///< Sends `body` as it is, head and all, and closes the connection.
    Hang,               ///< Never answers; the connection stays open.
    ResetAfterReading,  ///< Breaks the connection with RST once the request is read.
    Endless             ///< Sends status 200 and `length` bytes of filling, made on the fly.
  };
  Kind kind = Kind::Reply;
  int status = 200;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::uint64_t length = 0;
  std::chrono::milliseconds delay{0};  ///< Waited before the answer; stop() cuts it short.

  static ServerAction reply(int status, std::string body = {});
  static ServerAction redirect(int status, const std::string& location);
  static ServerAction hang();
  static ServerAction reset();
  /// A reply that promises `promised` bytes, sends only `sent` and closes.
  static ServerAction cutBody(std::size_t promised, const std::string& sent);
  /// A reply that calls itself gzip and is not.
  static ServerAction badGzip();
  static ServerAction endless(std::uint64_t length);
  static ServerAction raw(std::string bytes);
};

/// A small HTTP/1.1 server on 127.0.0.1 that misbehaves on demand. Test side only.
///
/// One thread accepts and one serves each connection. All members may be called from any thread but start() and stop().
/// The port is chosen once and stays reserved while the server is stopped: connections are refused then, and start()
/// brings the server back on the same port.
class LoopbackServer {
 public:
  /// A plain server, already started.
  LoopbackServer();
  /// A TLS server with this certificate chain and key (PEM files), already started.
  LoopbackServer(const std::string& certificateFile, const std::string& keyFile);
  ~LoopbackServer();

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  void start();
  /// Closes the port and breaks every connection.
  void stop();

  int port() const { return port_; }
  /// "http://127.0.0.1:<port><path>", or https.
  std::string url(const std::string& path = "/") const;

  /// What is done with a request: the next scripted action if there is one, else the action of its path (without the
  /// query), else the default, which is an empty reply with status 200.
  void setDefault(ServerAction action);
  void onPath(const std::string& path, ServerAction action);
  void script(ServerAction action);
  /// From now on connections are broken with RST as soon as the first bytes are there, which stay unread.
  void setResetOnAccept(bool reset);

  std::vector<ServedRequest> requests();
  std::size_t requestCount();
  std::size_t connectionCount();
  /// Waits until `count` requests have been read; false when that took longer than `seconds`.
  bool waitForRequests(std::size_t count, double seconds = 20);
  /// Keep the counts but not the requests themselves, for load.
  void setRecording(bool recording);

 private:
  class Connection;

  void reservePort();
  void acceptConnections(int listener);
  bool countConnection();
  void addConnection(int socket);
  void serve(Connection& connection);
  ServerAction take(ServedRequest request);
  void perform(Connection& connection, const ServerAction& action, bool headOnly);
  void sendFilling(Connection& connection, std::uint64_t length);
  bool waitUnlessStopping(std::chrono::milliseconds time);

  std::shared_ptr<void> tls_;  ///< The OpenSSL context; empty for a plain server.
  int port_ = 0;
  int socket_ = -1;  ///< Bound all the time, listening between start() and stop().
  std::thread acceptor_;

  Mutex mutex_;
  std::condition_variable_any changed_;
  bool stopping_ KESU_GUARDED_BY(mutex_) = false;
  bool recording_ KESU_GUARDED_BY(mutex_) = true;
  bool resetOnAccept_ KESU_GUARDED_BY(mutex_) = false;
  std::list<std::unique_ptr<Connection>> connections_ KESU_GUARDED_BY(mutex_);
  std::size_t connectionCount_ KESU_GUARDED_BY(mutex_) = 0;
  std::size_t requestCount_ KESU_GUARDED_BY(mutex_) = 0;
  std::vector<ServedRequest> requests_ KESU_GUARDED_BY(mutex_);
  std::deque<ServerAction> script_ KESU_GUARDED_BY(mutex_);
  std::map<std::string, ServerAction> paths_ KESU_GUARDED_BY(mutex_);
  ServerAction default_ KESU_GUARDED_BY(mutex_);
};

}  // namespace kesu::testing
