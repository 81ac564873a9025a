#include "tools/loopback/Certificate.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace kesu::loopback {
namespace {

// A week: a server that stands on a desk outlives the day, and nothing outlives the server.
constexpr long kValidSeconds = 7L * 24 * 60 * 60;
constexpr long kClockSlackSeconds = 60L * 60;
constexpr const char* kNames = "DNS:localhost,IP:127.0.0.1,IP:::1";
constexpr std::string_view kFileEnding = ".pem";

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using X509Pointer = std::unique_ptr<X509, decltype(&X509_free)>;

bool addExtension(X509& certificate, int kind, const char* value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, &certificate, &certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value), &X509_EXTENSION_free);
  return extension != nullptr && X509_add_ext(&certificate, extension.get(), -1) == 1;
}

// Certificates of several runs have the same name: only the number tells them apart.
bool setSerialNumber(X509& certificate) {
  std::uint64_t number = 0;
  return RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) == 1 &&
         ASN1_INTEGER_set_uint64(X509_get_serialNumber(&certificate), number >> 1U) == 1;
}

bool fill(X509& certificate, EVP_PKEY& key) {
  X509_NAME* name = X509_get_subject_name(&certificate);
  const auto* commonName = reinterpret_cast<const unsigned char*>("kesu-dev on localhost");
  return X509_set_version(&certificate, X509_VERSION_3) == 1 && setSerialNumber(certificate) &&
         X509_gmtime_adj(X509_getm_notBefore(&certificate), -kClockSlackSeconds) != nullptr &&
         X509_gmtime_adj(X509_getm_notAfter(&certificate), kValidSeconds) != nullptr &&
         X509_set_pubkey(&certificate, &key) == 1 &&
         X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, commonName, -1, -1, 0) == 1 &&
         X509_set_issuer_name(&certificate, name) == 1 && addExtension(certificate, NID_subject_alt_name, kNames) &&
         addExtension(certificate, NID_subject_key_identifier, "hash") &&
         X509_sign(&certificate, &key, EVP_sha256()) > 0;
}

}  // namespace

void Certificate::Freer::operator()(ssl_ctx_st* context) const {
  SSL_CTX_free(context);
}

std::unique_ptr<Certificate> Certificate::make(std::string& error) {
  const Key key(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), &EVP_PKEY_free);
  const X509Pointer certificate(X509_new(), &X509_free);
  auto made = std::make_unique<Certificate>();
  if (key == nullptr || certificate == nullptr || !fill(*certificate, *key) ||
      !made->prepareContext(*key, *certificate)) {
    error = "OpenSSL makes no certificate";
    return nullptr;
  }
  if (!made->save(*certificate)) {
    error = "cannot write the certificate to the directory for temporary files";
    return nullptr;
  }
  return made;
}

Certificate::~Certificate() {
  std::error_code ignored;
  if (!file_.empty()) {
    std::filesystem::remove(file_, ignored);
  }
}

bool Certificate::prepareContext(evp_pkey_st& key, x509_st& certificate) {
  context_.reset(SSL_CTX_new(TLS_server_method()));
  return context_ != nullptr && SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION) == 1 &&
         SSL_CTX_use_certificate(context_.get(), &certificate) == 1 &&
         SSL_CTX_use_PrivateKey(context_.get(), &key) == 1;
}

bool Certificate::save(x509_st& certificate) {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::absolute(std::filesystem::temp_directory_path(error));
  std::string path = (directory / "kesu-dev-XXXXXX").string() + std::string(kFileEnding);
  const int descriptor = mkostemps(path.data(), static_cast<int>(kFileEnding.size()), O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  file_ = path;
  const std::unique_ptr<std::FILE, decltype(&std::fclose)> file(fdopen(descriptor, "w"), &std::fclose);
  return file != nullptr && PEM_write_X509(file.get(), &certificate) == 1 && std::fflush(file.get()) == 0;
}

}  // namespace kesu::loopback
