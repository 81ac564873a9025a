#pragma once

#include <memory>
#include <string>

struct evp_pkey_st;
struct ssl_ctx_st;
struct x509_st;

namespace kesu::loopback {

/// A key and its certificate, made anew (P-256, valid for a week), for TLS servers on this machine. The private key
/// stays in memory unless it is saved. Throws std::runtime_error when OpenSSL or the file system refuses.
class Certificate {
 public:
  /// The names of this machine, as makers of certificates write them.
  static constexpr const char* kLoopbackHosts = "DNS:localhost,IP:127.0.0.1,IP:::1";

  /// An authority: signs others and serves no host.
  static Certificate authority(const std::string& name);

  /// For these hosts, signed by itself.
  static Certificate selfSigned(const std::string& name, const char* hosts = kLoopbackHosts);

  /// For these hosts, signed by this authority.
  Certificate sign(const std::string& name, const char* hosts = kLoopbackHosts) const;

  /// Writes the certificate or the private key in PEM form, for this user only.
  void save(const std::string& path) const;
  void saveKey(const std::string& path) const;

  /// Returns what a server accepts TLS connections with. Any thread; lives as long as the certificate.
  ssl_ctx_st& context() const { return *context_; }

 private:
  struct Freer {
    void operator()(evp_pkey_st* key) const;
    void operator()(x509_st* certificate) const;
    void operator()(ssl_ctx_st* context) const;
  };

  // `hosts` null makes an authority; `issuer` null lets the certificate sign itself.
  Certificate(const std::string& name, const char* hosts, const Certificate* issuer);

  void fill(const std::string& name, const x509_st& issuer);
  void addExtension(x509_st& issuer, int kind, const char* value);

  std::unique_ptr<evp_pkey_st, Freer> key_;
  std::unique_ptr<x509_st, Freer> certificate_;
  std::unique_ptr<ssl_ctx_st, Freer> context_;
};

}  // namespace kesu::loopback
