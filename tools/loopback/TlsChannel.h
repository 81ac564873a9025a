#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>

struct ssl_st;
struct ssl_ctx_st;

namespace kesu::loopback {

/// TLS over a connected socket, the server's side. The socket stays the caller's and becomes non-blocking. Used by one
/// thread at a time.
class TlsChannel {
 public:
  /// Waits until the socket is ready for POLLIN or POLLOUT; false when the time is up or the connection was aborted.
  using Wait = std::function<bool(short events)>;

  TlsChannel(ssl_ctx_st& context, int socket, Wait wait);

  /// Agrees on keys with the client. False when that fails; nothing else may be called then.
  bool accept();

  /// Reads at least one byte; waits for it. 0 or less: the client has ended, or is too slow.
  ssize_t read(char* out, std::size_t size);

  /// Sends everything. False when the connection is broken.
  bool write(std::string_view bytes);

  /// Whether bytes lie here already that the socket no longer shows.
  bool hasInput() const;

  /// Tells the client that nothing more is coming, so that it can tell an end from a broken connection.
  void sayGoodbye();

 private:
  struct Freer {
    void operator()(ssl_st* session) const;
  };

  // Repeats an operation of OpenSSL's until it no longer waits for the socket. Returns its result.
  int repeat(const std::function<int()>& operation);

  const Wait wait_;
  std::unique_ptr<ssl_st, Freer> session_;
  bool broken_ = true;  // Not agreed yet, or failed: a good-bye would be out of place.
};

}  // namespace kesu::loopback
