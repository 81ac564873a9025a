#include "testing/LoopbackServer.h"

#include <stdexcept>
#include <utility>

#include "tools/loopback/FaultyHandler.h"

namespace kesu::testing {

LoopbackServer::LoopbackServer() : LoopbackServer(static_cast<ssl_ctx_st*>(nullptr)) {}

LoopbackServer::LoopbackServer(const loopback::Certificate& certificate) : LoopbackServer(&certificate.context()) {}

LoopbackServer::LoopbackServer(ssl_ctx_st* tls)
    : isEncrypted_(tls != nullptr), server_([this](loopback::Request& request) { return handle(request); }, tls) {
  if (!server_.bind(0)) {
    throw std::runtime_error("LoopbackServer: no port");
  }
  start();
}

LoopbackServer::~LoopbackServer() {
  stop();
}

void LoopbackServer::start() {
  {
    const MutexLock lock(mutex_);
    stopping_ = false;
  }
  if (!server_.start()) {
    throw std::runtime_error("LoopbackServer: the port was taken");
  }
}

void LoopbackServer::stop() {
  {
    const MutexLock lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
  }
  server_.stop();
}

std::string LoopbackServer::url(const std::string& path) const {
  return (isEncrypted_ ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port()) + path;
}

void LoopbackServer::setDefault(Fault fault) {
  const MutexLock lock(mutex_);
  default_ = std::move(fault);
}

void LoopbackServer::onPath(const std::string& path, Fault fault) {
  const MutexLock lock(mutex_);
  paths_[path] = std::move(fault);
}

void LoopbackServer::script(Fault fault) {
  const MutexLock lock(mutex_);
  script_.push_back(std::move(fault));
}

std::vector<ServedRequest> LoopbackServer::requests() {
  const MutexLock lock(mutex_);
  return requests_;
}

std::size_t LoopbackServer::requestCount() {
  const MutexLock lock(mutex_);
  return requests_.size();
}

bool LoopbackServer::waitForRequests(std::size_t count, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  const MutexLock lock(mutex_);
  while (requests_.size() < count && changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
  }
  return requests_.size() >= count;
}

loopback::Reply LoopbackServer::handle(loopback::Request& request) {
  std::string body;
  if (!request.readBody(body)) {
    return loopback::Reply::closed();
  }
  const auto accept = [](loopback::Request&, const std::string&) {
    loopback::Reply reply;
    reply.contentType.clear();
    return reply;
  };
  return loopback::applyFault(record(request, std::move(body)), request, accept,
                              [this](std::chrono::milliseconds patience) { return waitForStop(patience); });
}

// Returns what is done with the request.
Fault LoopbackServer::record(const loopback::Request& request, std::string body) {
  const MutexLock lock(mutex_);
  requests_.push_back({request, std::move(body)});
  changed_.notify_all();
  if (!script_.empty()) {
    Fault fault = std::move(script_.front());
    script_.pop_front();
    return fault;
  }
  const auto found = paths_.find(request.path);
  return found != paths_.end() ? found->second : default_;
}

bool LoopbackServer::waitForStop(std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(mutex_);
  while (!stopping_ && changed_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
  }
  return stopping_;
}

}  // namespace kesu::testing
