#include "tools/loopback/TlsChannel.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace kesu::loopback {
namespace {

int lengthOf(std::size_t size) {
  return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

}  // namespace

void TlsChannel::Freer::operator()(ssl_st* session) const {
  SSL_free(session);
}

TlsChannel::TlsChannel(ssl_ctx_st& context, int socket, Wait wait)
    : wait_(std::move(wait)), session_(SSL_new(&context)) {
  fcntl(socket, F_SETFL, fcntl(socket, F_GETFL) | O_NONBLOCK);
  if (session_ != nullptr && SSL_set_fd(session_.get(), socket) != 1) {
    session_ = nullptr;
  }
}

bool TlsChannel::accept() {
  broken_ = session_ == nullptr || repeat([this] { return SSL_accept(session_.get()); }) != 1;
  return !broken_;
}

ssize_t TlsChannel::read(char* out, std::size_t size) {
  return repeat([&] { return SSL_read(session_.get(), out, lengthOf(size)); });
}

bool TlsChannel::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const int sent = repeat([&] { return SSL_write(session_.get(), bytes.data(), lengthOf(bytes.size())); });
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

bool TlsChannel::hasInput() const {
  return SSL_pending(session_.get()) > 0;
}

void TlsChannel::sayGoodbye() {
  if (!std::exchange(broken_, true)) {
    ERR_clear_error();
    SSL_shutdown(session_.get());
  }
}

int TlsChannel::repeat(const std::function<int()>& operation) {
  while (true) {
    ERR_clear_error();
    const int result = operation();
    if (result > 0) {
      return result;
    }
    const int why = SSL_get_error(session_.get(), result);
    const bool waits = why == SSL_ERROR_WANT_READ || why == SSL_ERROR_WANT_WRITE;
    if (!waits || !wait_(why == SSL_ERROR_WANT_READ ? POLLIN : POLLOUT)) {
      broken_ = broken_ || why != SSL_ERROR_ZERO_RETURN;
      return result;
    }
  }
}

}  // namespace kesu::loopback
