#pragma once

#include <sys/types.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>

namespace kesu::bench {

/// What the collector does with requests.
enum class Behaviour {
  Accept,  ///< Answers 200.
  Fail,    ///< Answers 500.
  Hang,    ///< Reads and never answers.
  Refuse   ///< Connections are refused.
};

/// A collector on loopback in a process of its own, so that its work is not measured. It does as little as an
/// HTTP/1.1 server can, and records which numbers it has accepted in the attribute "n".
///
/// Make it before the process has threads: it forks. The other process is killed by the destructor, and with this one.
class Collector {
 public:
  static constexpr std::size_t kMostNumbers = 200'000;

  explicit Collector(Behaviour behaviour);
  ~Collector();

  Collector(const Collector&) = delete;
  Collector& operator=(const Collector&) = delete;

  std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/"; }

  std::size_t requestCount() const { return shared_->requests.load(); }

  /// Whether a record with this number was answered with 200.
  bool hasAccepted(std::size_t number) const { return number < kMostNumbers && shared_->accepted[number].load() != 0; }

  /// How many records with these numbers, 0 to `count`, were answered with 200 more than once.
  std::size_t countRepeated(std::size_t count) const;

  /// When the latest record was answered with 200, by secondsNow().
  double lastAcceptedAt() const { return shared_->lastAcceptedAt.load(); }

  /// Returns the body of the latest request with a number; not while one is on its way.
  std::string lastBody() const;

  /// What both processes see.
  struct Shared {
    std::atomic<std::size_t> requests;
    std::array<std::atomic<std::uint8_t>, kMostNumbers> accepted;
    std::atomic<double> lastAcceptedAt;
    std::atomic<std::size_t> lastBodySize;
    std::array<char, 65536> lastBody;
  };

 private:
  void bindPort();

  Shared* shared_;  ///< A mapping; never unmapped.
  int socket_ = -1;
  int port_ = 0;
  pid_t child_ = -1;
};

}  // namespace kesu::bench
