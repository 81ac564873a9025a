#include "tools/loopback/Server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <utility>

#include "tools/loopback/Connection.h"

namespace kesu::loopback {
namespace {

constexpr std::size_t kBodyLimitBytes = std::size_t{16} * 1024 * 1024;
constexpr std::size_t kHeadLimitBytes = std::size_t{64} * 1024;
constexpr std::size_t kTargetLimitBytes = 2048;  // No route is longer, with its query.
constexpr std::size_t kChunkLineLimitBytes = 1024;
constexpr int kBacklog = 1024;  // A burst beyond it costs the senders a second each.
constexpr int kWaitForDescriptorsMs = 10;
constexpr int kWaitForFirstBytesMs = 1000;

// A socket with this port of 127.0.0.1 (0: any); -1 when it is taken.
int boundSocket(int port) {
  const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int on = 1;
  setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::bind(made, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
    return made;
  }
  ::close(made);
  return -1;
}

int portOf(int socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin_port);
}

// A connection that is reset at once may look refused to its client: something of the request must have come.
void resetAfterFirstBytes(int socket) {
  pollfd firstBytes{socket, POLLIN, 0};
  ::poll(&firstBytes, 1, kWaitForFirstBytesMs);
  Connection(socket, nullptr).reset();
}

bool hasBody(const RequestHead& head) {
  const std::string_view length = head.header("Content-Length");
  return !head.header("Transfer-Encoding").empty() || (!length.empty() && length != "0");
}

std::optional<std::size_t> parseSize(std::string_view text, int base) {
  std::size_t size = 0;
  const bool isNumber = std::from_chars(text.data(), text.data() + text.size(), size, base).ec == std::errc();
  return isNumber && size <= kBodyLimitBytes ? std::optional(size) : std::nullopt;
}

bool readChunks(Connection& connection, std::string& body) {
  while (true) {
    std::string line;
    const bool isRead = connection.readThrough("\r\n", kChunkLineLimitBytes, line);
    const std::optional<std::size_t> size = isRead ? parseSize(line, 16) : std::nullopt;
    if (!size || body.size() + *size > kBodyLimitBytes || !connection.read(*size, body)) {
      return false;
    }
    std::string end;
    if (!connection.readThrough("\r\n", kChunkLineLimitBytes, end) || *size == 0) {
      return *size == 0;
    }
  }
}

bool readBody(Connection& connection, const RequestHead& head, std::string& body) {
  if (!head.header("Expect").empty() && !connection.write("HTTP/1.1 100 Continue\r\n\r\n")) {
    return false;
  }
  if (!head.header("Transfer-Encoding").empty()) {
    return readChunks(connection, body);
  }
  const std::optional<std::size_t> size = parseSize(head.header("Content-Length"), 10);
  return size && connection.read(*size, body);
}

void writeStream(Connection& connection, const Reply& reply) {
  reply.stream([&](std::string_view piece) {
    if (reply.streamLength) {
      return connection.write(piece);
    }
    char size[sizeof(std::size_t) * 2];
    const std::string_view digits(size, std::to_chars(size, std::end(size), piece.size(), 16).ptr);
    // An empty chunk would end the body.
    return piece.empty() || connection.write(std::string(digits).append("\r\n").append(piece).append("\r\n"));
  });
  if (!reply.streamLength) {
    connection.write("0\r\n\r\n");
  }
}

// Returns whether the connection can be used on.
bool writeReply(Connection& connection, const Reply& reply, bool isHeadOnly, bool closes) {
  switch (reply.form) {
    case Reply::Form::Reset:
      connection.reset();
      return false;
    case Reply::Form::Raw:
      if (connection.write(reply.body) && reply.stream) {
        reply.stream([&](std::string_view piece) { return connection.write(piece); });
      }
      connection.abort();
      return false;
    case Reply::Form::Http:
      break;
  }
  std::string bytes = headOf(reply, closes);
  if (!isHeadOnly && !reply.stream) {
    bytes += reply.body;
  }
  const bool isSent = connection.write(bytes);
  if (isSent && !isHeadOnly && reply.stream) {
    writeStream(connection, reply);
  }
  return isSent;
}

// OpenSSL writes without MSG_NOSIGNAL.
void blockPipeSignal() {
  sigset_t pipe;
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
}

}  // namespace

struct Server::Served {
  Served(int socket, ssl_ctx_st* tls, std::size_t number) : connection(socket, tls), index(number) {}
  ~Served() {
    if (thread.joinable()) {
      thread.join();
    }
  }

  Connection connection;
  const std::size_t index;
  bool hasEnded = false;  // Guarded by the server's mutex.
  std::thread thread;
};

Server::Server(Handler handler, ssl_ctx_st* tls) : handler_(std::move(handler)), tls_(tls) {}

Server::~Server() {
  stop();
  if (socket_ >= 0) {
    ::close(socket_);
  }
}

bool Server::bind(int port) {
  socket_ = boundSocket(port);
  // Another program may be bound to the port as long as neither listens.
  if (socket_ >= 0 && ::listen(socket_, kBacklog) != 0) {
    ::close(std::exchange(socket_, -1));
  }
  port_ = socket_ >= 0 ? portOf(socket_) : 0;
  return socket_ >= 0;
}

bool Server::start() {
  const bool listens = ::listen(socket_, kBacklog) == 0;
  if (listens) {
    acceptor_ = std::thread([this] { acceptConnections(); });
  }
  return listens;
}

void Server::stop() {
  if (!acceptor_.joinable()) {
    return;
  }
  ::shutdown(socket_, SHUT_RDWR);
  acceptor_.join();
  const int listener = std::exchange(socket_, boundSocket(port_));
  ::close(listener);  // After its successor has the port, so that no other program takes it.
  std::list<std::unique_ptr<Served>> ending;
  {
    const MutexLock lock(mutex_);
    ending.swap(served_);
  }
  for (const auto& served : ending) {
    served->connection.abort();
  }
}

void Server::setResetOnAccept(bool reset) {
  const MutexLock lock(mutex_);
  resetOnAccept_ = reset;
}

std::size_t Server::connectionCount() {
  const MutexLock lock(mutex_);
  return accepted_;
}

bool Server::waitForConnections(int most, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  const MutexLock lock(mutex_);
  while (open_ > most && ended_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
  }
  return open_ <= most;
}

void Server::acceptConnections() {
  while (true) {
    const int socket = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket >= 0) {
      add(socket);
    } else if (errno == EMFILE) {
      ::poll(nullptr, 0, kWaitForDescriptorsMs);
    } else if (errno != EINTR && errno != ECONNABORTED) {
      return;
    }
  }
}

// Returns whether the connection is to be reset.
bool Server::countConnection() {
  const MutexLock lock(mutex_);
  ++accepted_;
  return resetOnAccept_;
}

void Server::add(int socket) {
  if (countConnection()) {
    resetAfterFirstBytes(socket);
    return;
  }
  std::list<std::unique_ptr<Served>> ended;  // Joined after the mutex is free.
  const MutexLock lock(mutex_);
  removeEnded(ended);
  ++open_;
  served_.push_back(std::make_unique<Served>(socket, tls_, accepted_ - 1));
  Served& added = *served_.back();
  added.thread = std::thread([this, &added] { serve(added); });
}

void Server::removeEnded(std::list<std::unique_ptr<Served>>& ended) {
  for (auto entry = served_.begin(); entry != served_.end();) {
    const auto next = std::next(entry);
    if ((*entry)->hasEnded) {
      ended.splice(ended.end(), served_, entry);
    }
    entry = next;
  }
}

void Server::serve(Served& served) {
  blockPipeSignal();
  if (served.connection.open()) {
    while (serveRequest(served)) {
    }
  }
  served.connection.abort();
  const MutexLock lock(mutex_);
  served.hasEnded = true;
  --open_;
  ended_.notify_all();
}

// Returns whether the connection can take another request.
bool Server::serveRequest(Served& served) {
  Connection& connection = served.connection;
  std::string bytes;
  if (!connection.readThrough("\r\n\r\n", kHeadLimitBytes, bytes)) {
    return false;
  }
  std::optional<RequestHead> head = parseHead(std::move(bytes));
  bool isRead = head && !hasBody(*head);
  Reply reply;
  Request request;
  if (!head) {
    reply = Reply::error(400, "this is no HTTP");
  } else if (head->target.size() > kTargetLimitBytes) {
    reply = Reply::error(414, "no route is that long");
    isRead = false;  // Whoever sends such a head gets no second request on this connection.
  } else {
    static_cast<RequestHead&>(request) = std::move(*head);
    request.connection = served.index;
    request.isGone = [&connection] { return connection.isGone(); };
    request.readBody = [&](std::string& body) {
      isRead = isRead || readBody(connection, request, body);
      return isRead;
    };
    reply = handler_(request);
  }
  // Behind a body that was left unread there is no telling where the next request begins.
  const bool closes = request.isLast || !isRead;
  const bool isSent = writeReply(connection, reply, request.method == "HEAD", closes);
  if (isSent && closes) {
    connection.close(isRead);
  }
  return isSent && !closes;
}

}  // namespace kesu::loopback
