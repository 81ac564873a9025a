#include "testing/LoopbackServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <strings.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace kesu::testing {
namespace {

constexpr std::size_t kReadSize = std::size_t{16} * 1024;
constexpr int kBacklog = 1024;
constexpr int kWaitForDescriptorsMs = 10;
constexpr int kMaxWaitForBytesMs = 1000;

void require(bool condition, const char* what) {
  if (!condition) {
    throw std::runtime_error(std::string("LoopbackServer: ") + what + ": " + std::strerror(errno));
  }
}

// Closing then sends RST instead of FIN.
void resetOnClose(int socket) {
  const linger hard{1, 0};
  setsockopt(socket, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
}

void setFlag(int socket, int level, int option) {
  const int on = 1;
  setsockopt(socket, level, option, &on, sizeof on);
}

std::pair<std::string, std::string> splitHeader(const std::string& line) {
  const std::size_t colon = line.find(':');
  if (colon == std::string::npos) {
    return {line, {}};
  }
  const std::size_t value = line.find_first_not_of(' ', colon + 1);
  return {line.substr(0, colon), value == std::string::npos ? std::string() : line.substr(value)};
}

ServedRequest parseHead(const std::string& head) {
  ServedRequest request;
  request.head = head;
  std::size_t start = 0;
  for (std::size_t end = head.find("\r\n"); end != start; end = head.find("\r\n", start)) {
    const std::string line = head.substr(start, end - start);
    if (start == 0) {
      const std::size_t space = line.find(' ');
      request.method = line.substr(0, space);
      request.target = line.substr(space + 1, line.rfind(' ') - space - 1);
    } else {
      request.headers.push_back(splitHeader(line));
    }
    start = end + 2;
  }
  return request;
}

std::string replyHead(int status, const std::vector<std::pair<std::string, std::string>>& headers,
                      std::uint64_t length) {
  std::string head = "HTTP/1.1 " + std::to_string(status) + " Scripted\r\n";
  for (const auto& [name, value] : headers) {
    head += name + ": " + value + "\r\n";
  }
  if (status != 204 && status != 304) {
    head += "Content-Length: " + std::to_string(length) + "\r\n";
  }
  return head + "\r\n";
}

SSL_CTX* makeContext(const std::string& certificateFile, const std::string& keyFile) {
  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  require(context != nullptr && SSL_CTX_use_certificate_chain_file(context, certificateFile.c_str()) == 1 &&
              SSL_CTX_use_PrivateKey_file(context, keyFile.c_str(), SSL_FILETYPE_PEM) == 1,
          certificateFile.c_str());
  return context;
}

}  // namespace

std::string ServedRequest::header(const std::string& name) const {
  for (const auto& [key, value] : headers) {
    if (strcasecmp(key.c_str(), name.c_str()) == 0) {
      return value;
    }
  }
  return {};
}

ServerAction ServerAction::reply(int status, std::string body) {
  ServerAction action;
  action.status = status;
  action.body = std::move(body);
  return action;
}

ServerAction ServerAction::redirect(int status, const std::string& location) {
  ServerAction action = reply(status, "moved");
  action.headers.emplace_back("Location", location);
  return action;
}

ServerAction ServerAction::hang() {
  ServerAction action;
  action.kind = Kind::Hang;
  return action;
}

ServerAction ServerAction::reset() {
  ServerAction action;
  action.kind = Kind::ResetAfterReading;
  return action;
}

ServerAction ServerAction::cutBody(std::size_t promised, const std::string& sent) {
  return raw(replyHead(200, {}, promised) + sent);
}

ServerAction ServerAction::badGzip() {
  ServerAction action = reply(200, "this was never compressed");
  action.headers.emplace_back("Content-Encoding", "gzip");
  return action;
}

ServerAction ServerAction::endless(std::uint64_t length) {
  ServerAction action;
  action.kind = Kind::Endless;
  action.length = length;
  return action;
}

ServerAction ServerAction::raw(std::string bytes) {
  ServerAction action;
  action.kind = Kind::Raw;
  action.body = std::move(bytes);
  return action;
}

/// One accepted connection: blocking reads and writes, plain or TLS.
class LoopbackServer::Connection {
 public:
  Connection(int socket, SSL_CTX* context, std::size_t number)
      : index(number), socket_(socket), tls_(context != nullptr ? SSL_new(context) : nullptr, &SSL_free) {
    if (tls_ != nullptr) {
      SSL_set_fd(tls_.get(), socket_);
    }
  }
  ~Connection() {
    if (thread.joinable()) {
      thread.join();
    }
    ::close(socket_);
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  bool handshake() { return tls_ == nullptr || SSL_accept(tls_.get()) == 1; }

  bool write(std::string_view bytes) {
    while (!bytes.empty()) {
      const std::ptrdiff_t count = tls_ != nullptr ? SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size()))
                                                   : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (count <= 0) {
        return false;
      }
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  /// Reads one request; false when the connection ended first.
  bool readRequest(ServedRequest& request) {
    std::size_t end = 0;
    while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
      if (!readMore()) {
        return false;
      }
    }
    request = parseHead(buffer_.substr(0, end + 4));
    buffer_.erase(0, end + 4);
    const std::size_t length = std::strtoul(request.header("Content-Length").c_str(), nullptr, 10);
    while (buffer_.size() < length) {
      if (!readMore()) {
        return false;
      }
    }
    request.body = buffer_.substr(0, length);
    buffer_.erase(0, length);
    request.connection = index;
    return true;
  }

  /// Ends both directions; whoever is blocked on the connection returns.
  void breakOff() { ::shutdown(socket_, SHUT_RDWR); }

  /// Closes with RST. The number stays taken until the object goes, so that no other socket gets it meanwhile.
  void reset() {
    resetOnClose(socket_);
    const int nothing = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ::dup3(nothing, socket_, O_CLOEXEC);
    ::close(nothing);
  }

  const std::size_t index;
  bool finished = false;  ///< Guarded by the server's mutex.
  std::thread thread;

 private:
  bool readMore() {
    std::array<char, kReadSize> chunk;
    const std::ptrdiff_t count = tls_ != nullptr ? SSL_read(tls_.get(), chunk.data(), static_cast<int>(chunk.size()))
                                                 : ::recv(socket_, chunk.data(), chunk.size(), 0);
    if (count <= 0) {
      return false;
    }
    buffer_.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
  }

  const int socket_;
  std::unique_ptr<SSL, decltype(&SSL_free)> tls_;
  std::string buffer_;
};

LoopbackServer::LoopbackServer() {
  reservePort();
  start();
}

LoopbackServer::LoopbackServer(const std::string& certificateFile, const std::string& keyFile)
    : tls_(makeContext(certificateFile, keyFile), [](SSL_CTX* context) { SSL_CTX_free(context); }) {
  reservePort();
  start();
}

LoopbackServer::~LoopbackServer() {
  stop();
  ::close(socket_);
}

void LoopbackServer::reservePort() {
  socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  require(socket_ >= 0, "socket");
  setFlag(socket_, SOL_SOCKET, SO_REUSEADDR);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port_));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  require(::bind(socket_, generic, sizeof address) == 0, "bind");
  socklen_t size = sizeof address;
  require(::getsockname(socket_, generic, &size) == 0, "getsockname");
  port_ = ntohs(address.sin_port);
}

void LoopbackServer::start() {
  {
    const MutexLock lock(mutex_);
    stopping_ = false;
  }
  require(::listen(socket_, kBacklog) == 0, "listen");
  acceptor_ = std::thread([this, listener = socket_] { acceptConnections(listener); });
}

void LoopbackServer::stop() {
  if (!acceptor_.joinable()) {
    return;
  }
  {
    const MutexLock lock(mutex_);
    stopping_ = true;
  }
  changed_.notify_all();
  ::shutdown(socket_, SHUT_RDWR);
  acceptor_.join();
  const int listener = socket_;
  reservePort();  // Before the old socket goes, so that nobody else gets the port.
  ::close(listener);
  std::list<std::unique_ptr<Connection>> ending;
  {
    const MutexLock lock(mutex_);
    ending.swap(connections_);
  }
  for (const auto& connection : ending) {
    connection->breakOff();
  }
}

std::string LoopbackServer::url(const std::string& path) const {
  return (tls_ != nullptr ? "https://127.0.0.1:" : "http://127.0.0.1:") + std::to_string(port_) + path;
}

void LoopbackServer::setDefault(ServerAction action) {
  const MutexLock lock(mutex_);
  default_ = std::move(action);
}

void LoopbackServer::onPath(const std::string& path, ServerAction action) {
  const MutexLock lock(mutex_);
  paths_[path] = std::move(action);
}

void LoopbackServer::script(ServerAction action) {
  const MutexLock lock(mutex_);
  script_.push_back(std::move(action));
}

void LoopbackServer::setResetOnAccept(bool reset) {
  const MutexLock lock(mutex_);
  resetOnAccept_ = reset;
}

void LoopbackServer::setRecording(bool recording) {
  const MutexLock lock(mutex_);
  recording_ = recording;
}

std::vector<ServedRequest> LoopbackServer::requests() {
  const MutexLock lock(mutex_);
  return requests_;
}

std::size_t LoopbackServer::requestCount() {
  const MutexLock lock(mutex_);
  return requestCount_;
}

std::size_t LoopbackServer::connectionCount() {
  const MutexLock lock(mutex_);
  return connectionCount_;
}

bool LoopbackServer::waitForRequests(std::size_t count, double seconds) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  const MutexLock lock(mutex_);
  while (requestCount_ < count) {
    if (changed_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
      return requestCount_ >= count;
    }
  }
  return true;
}

void LoopbackServer::acceptConnections(int listener) {
  for (;;) {
    const int socket = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket >= 0) {
      addConnection(socket);
    } else if (errno == EMFILE) {
      ::poll(nullptr, 0, kWaitForDescriptorsMs);
    } else if (errno != EINTR && errno != ECONNABORTED) {
      return;
    }
  }
}

// Returns whether the connection is to be reset.
bool LoopbackServer::countConnection() {
  const MutexLock lock(mutex_);
  ++connectionCount_;
  return resetOnAccept_;
}

void LoopbackServer::addConnection(int socket) {
  setFlag(socket, IPPROTO_TCP, TCP_NODELAY);
  if (countConnection()) {
    pollfd firstBytes{socket, POLLIN, 0};  // A connection that is reset at once may look refused.
    ::poll(&firstBytes, 1, kMaxWaitForBytesMs);
    resetOnClose(socket);
    ::close(socket);
    return;
  }
  std::list<std::unique_ptr<Connection>> gone;  // Joined after the mutex is free.
  const MutexLock lock(mutex_);
  const std::size_t index = connectionCount_ - 1;
  for (auto entry = connections_.begin(); entry != connections_.end();) {
    const auto next = std::next(entry);
    if ((*entry)->finished) {
      gone.splice(gone.end(), connections_, entry);
    }
    entry = next;
  }
  connections_.push_back(std::make_unique<Connection>(socket, static_cast<SSL_CTX*>(tls_.get()), index));
  Connection& added = *connections_.back();
  added.thread = std::thread([this, &added] { serve(added); });
}

void LoopbackServer::serve(Connection& connection) {
  // OpenSSL writes without MSG_NOSIGNAL.
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  ServedRequest request;
  if (connection.handshake()) {
    while (connection.readRequest(request)) {
      const bool headOnly = request.method == "HEAD";
      perform(connection, take(std::move(request)), headOnly);
    }
  }
  connection.breakOff();
  const MutexLock lock(mutex_);
  connection.finished = true;
}

ServerAction LoopbackServer::take(ServedRequest request) {
  const MutexLock lock(mutex_);
  ServerAction action = default_;
  if (!script_.empty()) {
    action = std::move(script_.front());
    script_.pop_front();
  } else if (const auto found = paths_.find(request.target.substr(0, request.target.find('?')));
             found != paths_.end()) {
    action = found->second;
  }
  ++requestCount_;
  if (recording_) {
    requests_.push_back(std::move(request));
  }
  changed_.notify_all();
  return action;
}

void LoopbackServer::perform(Connection& connection, const ServerAction& action, bool headOnly) {
  if (action.delay.count() > 0 && !waitUnlessStopping(action.delay)) {
    return;
  }
  switch (action.kind) {
    case ServerAction::Kind::Reply:
      connection.write(replyHead(action.status, action.headers, action.body.size()) +
                       (headOnly ? std::string() : action.body));
      return;
    case ServerAction::Kind::Raw:
      connection.write(action.body);
      connection.breakOff();
      return;
    case ServerAction::Kind::Hang:
      return;  // The thread goes on reading, which ends with the connection.
    case ServerAction::Kind::ResetAfterReading:
      connection.reset();
      return;
    case ServerAction::Kind::Endless:
      sendFilling(connection, action.length);
      return;
  }
}

void LoopbackServer::sendFilling(Connection& connection, std::uint64_t length) {
  const std::string filling(std::size_t{64} * 1024, 'x');
  bool open = connection.write(replyHead(200, {}, length));
  while (open && length > 0) {
    const std::uint64_t count = std::min<std::uint64_t>(length, filling.size());
    open = connection.write(std::string_view(filling).substr(0, count));
    length -= count;
  }
}

bool LoopbackServer::waitUnlessStopping(std::chrono::milliseconds time) {
  const auto deadline = std::chrono::steady_clock::now() + time;
  const MutexLock lock(mutex_);
  while (!stopping_) {
    if (changed_.wait_until(mutex_, deadline) == std::cv_status::timeout) {
      return true;
    }
  }
  return false;
}

}  // namespace kesu::testing
