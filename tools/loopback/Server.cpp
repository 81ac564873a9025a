#include "tools/loopback/Server.h"

#include <sys/socket.h>

#include <condition_variable>
#include <set>
#include <thread>

#include "foundation/Mutex.h"
#include "tools/loopback/Connection.h"

namespace kesu::loopback {
namespace {

// One worker serves one connection at a time. Our own HTTP client opens six; the rest is for tests that hang requests,
// followers of the event stream and browsers. TLS is ours too, inside Connection: the HTTP library's own TLS server
// leaves no hand on the connection.
constexpr std::size_t kWorkers = 128;
constexpr std::size_t kBodyLimitBytes = std::size_t{16} * 1024 * 1024;
constexpr std::size_t kPathLimitBytes = 1024;
constexpr int kBacklog = 512;
constexpr std::chrono::milliseconds kIdlePatience{60'000};

// The library's worker threads; tells of every connection before a worker takes it up.
class Workers final : public httplib::ThreadPool {
 public:
  explicit Workers(std::function<void()> accepted) : ThreadPool(kWorkers), accepted_(std::move(accepted)) {}

  void enqueue(std::function<void()> serve) override {
    accepted_();
    ThreadPool::enqueue(std::move(serve));
  }

 private:
  const std::function<void()> accepted_;
};

// What belongs to the request that a worker is serving. The HTTP library has no place for data of ours in its request,
// and a worker serves one connection at a time.
struct Current {
  Connection* connection = nullptr;
  bool parsed = false;     // The request line and headers made sense.
  bool mustClose = false;  // The connection ends with the reply.
  std::optional<std::string> acceptEncoding;
};
thread_local Current current;

// The library compresses every reply that may be. Replies here are small or are read by people with simple tools, so
// the header that allows it is kept from the library.
void beginRequest(httplib::Request& request) {
  current.parsed = true;
  if (request.has_header("Accept-Encoding")) {
    current.acceptEncoding = request.get_header_value("Accept-Encoding");
    request.headers.erase("Accept-Encoding");
  }
}

// Pseudo headers that the HTTP library adds to those received.
bool isReceived(const std::string& name) {
  return name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" && name != "LOCAL_PORT";
}

Request requestFrom(const httplib::Request& from) {
  Request request;
  request.method = from.method;
  request.path = from.path;
  for (const auto& header : from.headers) {
    if (isReceived(header.first)) {
      request.headers.push_back(header);
    }
  }
  if (current.acceptEncoding) {
    request.headers.emplace_back("Accept-Encoding", *current.acceptEncoding);
  }
  request.query.assign(from.params.begin(), from.params.end());
  request.isGone = [connection = current.connection] { return connection->isGone(); };
  return request;
}

void writeStream(Reply&& reply, httplib::Response& to) {
  current.connection->sendAtOnce();
  to.set_chunked_content_provider(reply.contentType, [stream = reply.stream](std::size_t, httplib::DataSink& sink) {
    stream([&](std::string_view piece) { return sink.write(piece.data(), piece.size()); });
    sink.done();
    return true;
  });
}

void writeReply(Reply&& reply, httplib::Response& to) {
  if (reply.close) {
    current.connection->abort();
    return;
  }
  to.status = reply.status;
  for (const auto& [name, value] : reply.headers) {
    to.set_header(name, value);
  }
  if (reply.stream) {
    writeStream(std::move(reply), to);
  } else {
    to.set_content(reply.body, reply.contentType);
  }
}

}  // namespace

class Server::Implementation final : private httplib::Server {
 public:
  Implementation(loopback::Server::Handler handler, ssl_ctx_st* tls) : handler_(std::move(handler)), tls_(tls) {
    // The library takes over the pool that it gets as a raw pointer.
    new_task_queue = [this] { return std::make_unique<Workers>([this] { countConnection(1); }).release(); };
    set_payload_max_length(kBodyLimitBytes);
    set_keep_alive_max_count(1'000'000);
    set_keep_alive_timeout(std::chrono::duration_cast<std::chrono::seconds>(kIdlePatience).count());
    // The library's own options let a second server take the same port.
    set_socket_options([](int socket) {
      const int on = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    addRoutes();
  }

  int bindPort(int port) {
    const int bound = port == 0 ? bind_to_any_port("127.0.0.1") : (bind_to_port("127.0.0.1", port) ? port : -1);
    if (bound > 0) {
      // The library listens with room for five connections; a burst beyond that costs a second each.
      ::listen(svr_sock_, kBacklog);
    }
    return bound;
  }

  void run() {
    listener_ = std::thread([this] { listen_after_bind(); });
    // Stopping a server that has not begun to listen is lost on the library.
    while (!is_running()) {
      std::this_thread::yield();
    }
  }

  bool waitForConnections(int most, std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const MutexLock lock(mutex_);
    while (open_ > most && left_.wait_until(mutex_, deadline) == std::cv_status::no_timeout) {
    }
    return open_ <= most;
  }

  void end() {
    {
      const MutexLock lock(mutex_);
      stopping_ = true;
      for (Connection* connection : connections_) {
        connection->abort();
      }
    }
    if (listener_.joinable()) {
      httplib::Server::stop();
      listener_.join();
    }
  }

 private:
  void addRoutes() {
    set_pre_routing_handler([](const httplib::Request& request, httplib::Response& response) {
      // Routes are regular expressions: a long path would cost them much stack.
      const bool tooLong = request.path.size() > kPathLimitBytes;
      if (tooLong) {
        current.mustClose = true;
        response.status = 414;
      }
      return tooLong ? HandlerResponse::Handled : HandlerResponse::Unhandled;
    });
    const auto plain = [this](const httplib::Request& from, httplib::Response& to) { answer(from, to, nullptr); };
    const auto withBody = [this](const httplib::Request& from, httplib::Response& to,
                                 const httplib::ContentReader& reader) { answer(from, to, &reader); };
    Get(".*", plain).Delete(".*", plain).Post(".*", withBody).Put(".*", withBody);
  }

  void answer(const httplib::Request& from, httplib::Response& to, const httplib::ContentReader* reader) {
    Request request = requestFrom(from);
    // Without a length the library would read until the sender closes.
    bool isRead = reader == nullptr || !(from.has_header("Content-Length") || from.has_header("Transfer-Encoding"));
    // The library hands out a multipart body in pieces of its own; nobody has business sending one here.
    const bool isReadable = !from.is_multipart_form_data();
    request.readBody = [&](std::string& body) {
      isRead = isRead || (isReadable && (*reader)([&](const char* bytes, std::size_t size) {
                            body.append(bytes, size);
                            return true;
                          }));
      return isRead;
    };
    writeReply(handler_(request), to);
    current.mustClose = current.mustClose || !isRead;
  }

  bool process_and_close_socket(socket_t socket) override {
    serveAll(socket);
    countConnection(-1);
    return true;
  }

  void serveAll(socket_t socket) {
    Connection connection(socket, tls_);
    if (!enter(connection)) {
      return;
    }
    bool lives = connection.open();
    while (lives) {
      lives = connection.waitForRequest(kIdlePatience) && serveOne(connection);
    }
    current = Current();
    leave(connection);
  }

  void countConnection(int change) {
    const MutexLock lock(mutex_);
    open_ += change;
    left_.notify_all();
  }

  // Returns whether the connection can take another request.
  bool serveOne(Connection& connection) {
    bool closes = false;
    current = Current{&connection, false, false, std::nullopt};
    const bool served = process_request(connection, false, closes, beginRequest);
    const bool sent = connection.flush();
    // After what is no HTTP, or a body left unread, nobody knows where the next request would begin.
    if (sent && (current.mustClose || !current.parsed)) {
      connection.drain();
      return false;
    }
    return served && sent && !closes;
  }

  bool enter(Connection& connection) {
    const MutexLock lock(mutex_);
    if (!stopping_) {
      connections_.insert(&connection);
    }
    return !stopping_;
  }

  void leave(Connection& connection) {
    const MutexLock lock(mutex_);
    connections_.erase(&connection);
  }

  const loopback::Server::Handler handler_;
  ssl_ctx_st* const tls_;
  std::thread listener_;
  Mutex mutex_;
  std::condition_variable_any left_;
  int open_ KESU_GUARDED_BY(mutex_) = 0;  // Accepted and not yet ended, in a worker's hands or not.
  std::set<Connection*> connections_ KESU_GUARDED_BY(mutex_);
  bool stopping_ KESU_GUARDED_BY(mutex_) = false;
};

Server::Server(Handler handler, ssl_ctx_st* tls)
    : implementation_(std::make_unique<Implementation>(std::move(handler), tls)) {}

Server::~Server() {
  stop();
}

bool Server::bind(int port) {
  const int bound = implementation_->bindPort(port);
  port_ = bound > 0 ? bound : 0;
  return bound > 0;
}

void Server::start() {
  implementation_->run();
}

bool Server::waitForConnections(int most, std::chrono::milliseconds patience) {
  return implementation_->waitForConnections(most, patience);
}

void Server::stop() {
  implementation_->end();
}

}  // namespace kesu::loopback
