#pragma once

#include <httplib.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/loopback/TlsChannel.h"

namespace kesu::loopback {

/// One accepted connection: what the HTTP library reads requests from and writes replies to.
///
/// Our own instead of the library's, for what a tool that simulates faults needs: it closes a connection at any point
/// of a request, sees that the sender has gone, and is woken from any wait by abort(). Used by one worker thread;
/// abort() and isGone() by any.
class Connection final : public httplib::Stream {
 public:
  /// Takes over a connected socket. With `tls` the connection is encrypted; the context must outlive it.
  Connection(int socket, ssl_ctx_st* tls);
  ~Connection() override;

  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Makes the connection ready: agrees on keys when it is encrypted. False when that fails.
  bool open();

  /// Waits for the first byte of the next request. False when the sender closed, was silent too long, or on abort().
  bool waitForRequest(std::chrono::milliseconds patience);

  /// Ends the connection now, from any thread: reads and writes fail from here on.
  void abort();

  /// Whether the other side has closed, or abort() was called.
  bool isGone() const;

  /// Sends what write() gathered. False when the connection is broken.
  bool flush();

  /// From now on every write() is sent at once.
  void sendAtOnce() { gathers_ = false; }

  /// Says good-bye after a reply to a request that was not read to its end: closing with unread bytes would make the
  /// kernel take the reply back. Reads on for a moment and a bounded number of bytes.
  void drain();

  bool is_readable() const override;
  bool is_writable() const override;
  ssize_t read(char* out, size_t size) override;
  ssize_t write(const char* bytes, size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  socket_t socket() const override { return socket_; }

 private:
  bool waitFor(short events, std::chrono::milliseconds patience) const;
  bool waitForInput(std::chrono::milliseconds patience) const;
  bool fill();
  bool sendAll();

  const int socket_;
  std::atomic<bool> aborted_{false};
  std::optional<TlsChannel> tls_;
  bool gathers_ = true;
  std::string outgoing_;
  std::vector<char> incoming_;
  std::size_t incomingBegin_ = 0;
  std::size_t incomingEnd_ = 0;
};

}  // namespace kesu::loopback
