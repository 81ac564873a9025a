#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "foundation/Mutex.h"
#include "tools/loopback/Certificate.h"
#include "tools/loopback/Faults.h"
#include "tools/loopback/Server.h"

namespace kesu::testing {

using loopback::Fault;

/// A request as it was served.
struct ServedRequest : loopback::RequestHead {
  std::string body;
};

/// A server on 127.0.0.1 that records requests and answers them as the test says. Started when it is made. All members
/// may be called from any thread but start() and stop(). The port stays reserved while the server is stopped.
class LoopbackServer {
 public:
  LoopbackServer();
  /// A TLS server with this certificate, which must outlive it.
  explicit LoopbackServer(const loopback::Certificate& certificate);
  ~LoopbackServer();

  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  void start();
  /// Breaks every connection; further ones are refused.
  void stop();

  int port() const { return server_.port(); }
  /// Returns "http://127.0.0.1:<port><path>", or https.
  std::string url(const std::string& path = "/") const;

  /// A request is answered by the next scripted fault if there is one, else by the fault of its path (without the
  /// query), else by the default, which is an empty reply with status 200.
  void setDefault(Fault fault);
  void onPath(const std::string& path, Fault fault);
  void script(Fault fault);
  void setResetOnAccept(bool reset) { server_.setResetOnAccept(reset); }

  std::vector<ServedRequest> requests();
  std::size_t requestCount();
  std::size_t connectionCount() { return server_.connectionCount(); }
  /// Waits until `count` requests have been read; false when that took longer than `seconds`.
  bool waitForRequests(std::size_t count, double seconds = 20);

 private:
  explicit LoopbackServer(ssl_ctx_st* tls);

  loopback::Reply handle(loopback::Request& request);
  Fault record(const loopback::Request& request, std::string body);
  bool waitForStop(std::chrono::milliseconds patience);

  Mutex mutex_;
  std::condition_variable_any changed_;
  bool stopping_ KESU_GUARDED_BY(mutex_) = false;
  std::vector<ServedRequest> requests_ KESU_GUARDED_BY(mutex_);
  std::deque<Fault> script_ KESU_GUARDED_BY(mutex_);
  std::map<std::string, Fault> paths_ KESU_GUARDED_BY(mutex_);
  Fault default_ KESU_GUARDED_BY(mutex_) = Fault::reply(200);
  const bool isEncrypted_;
  loopback::Server server_;
};

}  // namespace kesu::testing
