#include "tools/loopback/Certificate.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <stdexcept>

namespace kesu::loopback {
namespace {

// A week: a server that stands on a desk outlives the day, and nothing outlives the server.
constexpr long kValidSeconds = 7L * 24 * 60 * 60;
constexpr long kClockSlackSeconds = 60L * 60;

using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

void require(bool condition, const std::string& what) {
  if (!condition) {
    throw std::runtime_error(what);
  }
}

File openForWriting(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR);
  File file(descriptor >= 0 ? ::fdopen(descriptor, "w") : nullptr, &std::fclose);
  require(file != nullptr, "cannot write " + path);
  return file;
}

}  // namespace

void Certificate::Freer::operator()(evp_pkey_st* key) const {
  EVP_PKEY_free(key);
}

void Certificate::Freer::operator()(x509_st* certificate) const {
  X509_free(certificate);
}

void Certificate::Freer::operator()(ssl_ctx_st* context) const {
  SSL_CTX_free(context);
}

Certificate Certificate::authority(const std::string& name) {
  return {name, nullptr, nullptr};
}

Certificate Certificate::selfSigned(const std::string& name, const char* hosts) {
  return {name, hosts, nullptr};
}

Certificate Certificate::sign(const std::string& name, const char* hosts) const {
  return {name, hosts, this};
}

Certificate::Certificate(const std::string& name, const char* hosts, const Certificate* issuer)
    : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256")),
      certificate_(X509_new()),
      context_(SSL_CTX_new(TLS_server_method())) {
  require(key_ != nullptr && certificate_ != nullptr && context_ != nullptr, "OpenSSL makes no certificate");
  const Certificate& signer = issuer != nullptr ? *issuer : *this;
  fill(name, *signer.certificate_);
  if (hosts == nullptr) {
    addExtension(*signer.certificate_, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(*signer.certificate_, NID_key_usage, "critical,keyCertSign,cRLSign");
  } else {
    addExtension(*signer.certificate_, NID_subject_alt_name, hosts);
  }
  // Authorities of several runs have the same name: the key tells them apart.
  addExtension(*signer.certificate_, NID_subject_key_identifier, "hash");
  if (issuer != nullptr) {
    addExtension(*signer.certificate_, NID_authority_key_identifier, "keyid");
  }
  require(X509_sign(certificate_.get(), signer.key_.get(), EVP_sha256()) > 0 &&
              SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION) == 1 &&
              SSL_CTX_use_certificate(context_.get(), certificate_.get()) == 1 &&
              SSL_CTX_use_PrivateKey(context_.get(), key_.get()) == 1,
          "OpenSSL signs no certificate");
}

void Certificate::fill(const std::string& name, const x509_st& issuer) {
  // So are certificates of one issuer: only the number tells those apart.
  std::uint64_t number = 0;
  X509& made = *certificate_;
  X509_NAME* const subject = X509_get_subject_name(&made);
  const auto* const commonName = reinterpret_cast<const unsigned char*>(name.c_str());
  require(RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) == 1 &&
              ASN1_INTEGER_set_uint64(X509_get_serialNumber(&made), number >> 1U) == 1 &&
              X509_set_version(&made, X509_VERSION_3) == 1 &&
              X509_gmtime_adj(X509_getm_notBefore(&made), -kClockSlackSeconds) != nullptr &&
              X509_gmtime_adj(X509_getm_notAfter(&made), kValidSeconds) != nullptr &&
              X509_set_pubkey(&made, key_.get()) == 1 &&
              X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, commonName, -1, -1, 0) == 1 &&
              X509_set_issuer_name(&made, X509_get_subject_name(&issuer)) == 1,
          "OpenSSL fills no certificate");
}

void Certificate::addExtension(x509_st& issuer, int kind, const char* value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, &issuer, certificate_.get(), nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value), &X509_EXTENSION_free);
  require(extension != nullptr && X509_add_ext(certificate_.get(), extension.get(), -1) == 1, value);
}

void Certificate::save(const std::string& path) const {
  const File file = openForWriting(path);
  require(PEM_write_X509(file.get(), certificate_.get()) == 1 && std::fflush(file.get()) == 0, "cannot write " + path);
}

void Certificate::saveKey(const std::string& path) const {
  const File file = openForWriting(path);
  require(PEM_write_PrivateKey(file.get(), key_.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1 &&
              std::fflush(file.get()) == 0,
          "cannot write " + path);
}

}  // namespace kesu::loopback
