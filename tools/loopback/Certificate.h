#pragma once

#include <memory>
#include <string>

struct evp_pkey_st;
struct ssl_ctx_st;
struct x509_st;

namespace kesu::loopback {

/// The identity of a TLS server on this machine: a key and a certificate for localhost, 127.0.0.1 and ::1 that signs
/// itself, made anew for each run. The private key never leaves the memory; the certificate lies in a temporary file
/// of this user's, for programs that are to trust the server, and the file goes with the object.
class Certificate {
 public:
  /// Returns null and one sentence in `error` when OpenSSL or the file system refuses.
  static std::unique_ptr<Certificate> make(std::string& error);

  /// Only make() calls this.
  Certificate() = default;
  ~Certificate();

  Certificate(const Certificate&) = delete;
  Certificate& operator=(const Certificate&) = delete;

  /// Absolute path of the certificate, in PEM form.
  const std::string& file() const { return file_; }

  /// What a server accepts TLS connections with. Any thread.
  ssl_ctx_st& context() const { return *context_; }

 private:
  struct Freer {
    void operator()(ssl_ctx_st* context) const;
  };

  bool prepareContext(evp_pkey_st& key, x509_st& certificate);
  bool save(x509_st& certificate);

  std::unique_ptr<ssl_ctx_st, Freer> context_;
  std::string file_;
};

}  // namespace kesu::loopback
