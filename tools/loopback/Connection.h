#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct ssl_st;
struct ssl_ctx_st;

namespace kesu::loopback {

/// The bytes of one accepted connection, plain or over TLS. Reading and writing block, for a minute at most. Used by
/// one thread; abort() and isGone() by any.
class Connection {
 public:
  /// Takes over a connected socket. With `tls` the connection is encrypted; the context must outlive it.
  Connection(int socket, ssl_ctx_st* tls);
  ~Connection();

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Makes the connection ready: agrees on keys when it is encrypted. False when that fails.
  bool open();

  /// Reads up to and including `end` into `out`. False when the connection ends first, or after `limit` bytes without.
  bool readThrough(std::string_view end, std::size_t limit, std::string& out);

  /// Appends the next `count` bytes to `out`. False when the connection ends first.
  bool read(std::size_t count, std::string& out);

  /// Sends everything. False when the connection is broken.
  bool write(std::string_view bytes);

  /// Ends the connection in order. Where the request was not read to its end, reads on for a moment and a bounded
  /// number of bytes first: closing with unread bytes makes the kernel take the reply back.
  void close(bool isAllRead);

  /// Breaks the connection off: the peer sees an end without a good-bye, reads and writes fail from here on.
  void abort();

  /// Breaks the connection with RST.
  void reset();

  /// Whether the peer has closed, or abort() was called.
  bool isGone() const;

 private:
  struct Freer {
    void operator()(ssl_st* session) const;
  };

  bool fill();

  const int socket_;
  std::atomic<bool> aborted_{false};
  std::unique_ptr<ssl_st, Freer> tls_;
  std::string unread_;  // Received and not handed out yet.
};

}  // namespace kesu::loopback
