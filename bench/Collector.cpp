#include "Collector.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "Stopwatch.h"

namespace kesu::bench {
namespace {

constexpr int kBacklog = 128;
constexpr std::size_t kReadSize = 65536;
constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kAccepted = "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n";
constexpr std::string_view kFailed = "HTTP/1.1 500 Internal Server Error\r\nContent-Length: 0\r\n\r\n";

std::size_t numberAfter(std::string_view text, std::string_view label, std::size_t otherwise) {
  const std::size_t at = text.find(label);
  if (at == std::string_view::npos) {
    return otherwise;
  }
  text.remove_prefix(at + label.size());
  std::size_t number = otherwise;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

/// One client, in the collector's process.
class Client {
 public:
  Client(int socket, Behaviour behaviour, Collector::Shared& shared)
      : socket_(socket), behaviour_(behaviour), shared_(shared) {}

  void serve() {
    while (const auto body = readBody()) {
      note(*body);
      if (behaviour_ != Behaviour::Hang && !send(behaviour_ == Behaviour::Accept ? kAccepted : kFailed)) {
        break;
      }
    }
    ::close(socket_);
  }

 private:
  std::optional<std::string> readBody() {
    std::size_t end = std::string::npos;
    while ((end = buffer_.find(kHeadEnd)) == std::string::npos) {
      if (!readMore()) {
        return std::nullopt;
      }
    }
    const std::string_view head = std::string_view(buffer_).substr(0, end);
    const std::size_t start = end + kHeadEnd.size();
    const std::size_t length = numberAfter(head, "Content-Length: ", 0);
    while (buffer_.size() < start + length) {
      if (!readMore()) {
        return std::nullopt;
      }
    }
    std::string body = buffer_.substr(start, length);
    buffer_.erase(0, start + length);
    return body;
  }

  bool readMore() {
    const std::size_t had = buffer_.size();
    buffer_.resize(had + kReadSize);
    const ssize_t count = ::recv(socket_, buffer_.data() + had, kReadSize, 0);
    buffer_.resize(had + static_cast<std::size_t>(count > 0 ? count : 0));
    return count > 0;
  }

  bool send(std::string_view reply) {
    return ::send(socket_, reply.data(), reply.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(reply.size());
  }

  void note(const std::string& body) {
    ++shared_.requests;
    const std::size_t number = numberAfter(body, "\"n\":\"", Collector::kMostNumbers);
    if (number >= Collector::kMostNumbers) {
      return;
    }
    if (behaviour_ == Behaviour::Accept) {
      ++shared_.accepted[number];
      shared_.lastAcceptedAt = secondsNow();
    }
    const std::size_t size = std::min(body.size(), shared_.lastBody.size());
    std::memcpy(shared_.lastBody.data(), body.data(), size);
    shared_.lastBodySize = size;
  }

  const int socket_;
  const Behaviour behaviour_;
  Collector::Shared& shared_;
  std::string buffer_;
};

[[noreturn]] void runCollector(int socket, Behaviour behaviour, Collector::Shared& shared) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (;;) {
    const int client = ::accept4(socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (client >= 0) {
      const int on = 1;
      ::setsockopt(client, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
      std::thread([client, behaviour, &shared] { Client(client, behaviour, shared).serve(); }).detach();
    }
  }
}

}  // namespace

Collector::Collector(Behaviour behaviour)
    : shared_(static_cast<Shared*>(
          ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
  bindPort();
  if (behaviour == Behaviour::Refuse) {
    return;
  }
  if (::listen(socket_, kBacklog) != 0) {
    throw std::runtime_error("The collector cannot listen");
  }
  child_ = ::fork();
  if (child_ == 0) {
    runCollector(socket_, behaviour, *shared_);
  }
}

Collector::~Collector() {
  if (child_ > 0) {
    ::kill(child_, SIGKILL);
    ::waitpid(child_, nullptr, 0);
  }
  ::close(socket_);
}

void Collector::bindPort() {
  socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  socklen_t size = sizeof address;
  if (shared_ == MAP_FAILED || ::bind(socket_, generic, size) != 0 || ::getsockname(socket_, generic, &size) != 0) {
    throw std::runtime_error("The collector cannot have a port");
  }
  port_ = ntohs(address.sin_port);
}

std::size_t Collector::countRepeated(std::size_t count) const {
  return static_cast<std::size_t>(std::count_if(shared_->accepted.begin(), shared_->accepted.begin() + count,
                                                [](const auto& times) { return times.load() > 1; }));
}

std::string Collector::lastBody() const {
  return {shared_->lastBody.data(), shared_->lastBodySize.load()};
}

}  // namespace kesu::bench
