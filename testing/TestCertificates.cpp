#include "testing/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace kesu::testing {
namespace {

constexpr long kValidSeconds = 24L * 60 * 60;

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;
using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

void require(bool condition, const char* what) {
  if (!condition) {
    throw std::runtime_error(std::string("TestCertificates: ") + what);
  }
}

File openForWriting(const std::string& path) {
  File file(std::fopen(path.c_str(), "we"), &std::fclose);
  require(file != nullptr, path.c_str());
  return file;
}

void addExtension(X509& certificate, X509& issuer, int kind, const char* value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, &issuer, &certificate, nullptr, nullptr, 0);
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, &context, kind, value), &X509_EXTENSION_free);
  require(extension != nullptr && X509_add_ext(&certificate, extension.get(), -1) == 1, value);
}

void setName(X509_NAME& name, const char* commonName) {
  std::string text = commonName;
  require(X509_NAME_add_entry_by_txt(&name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()), -1, 0) == 1,
          commonName);
}

struct Identity {
  Key key{EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), &EVP_PKEY_free};
  Certificate certificate{X509_new(), &X509_free};
};

// `issuer` null makes a certificate that signs itself; `alternativeNames` null makes an authority.
Identity makeIdentity(const char* commonName, const char* alternativeNames, long serial, const Identity* issuer) {
  Identity made;
  require(made.key != nullptr && made.certificate != nullptr, "cannot make a key");
  X509& certificate = *made.certificate;
  const Identity& signer = issuer != nullptr ? *issuer : made;
  X509_set_version(&certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(&certificate), serial);
  X509_gmtime_adj(X509_getm_notBefore(&certificate), -kValidSeconds);
  X509_gmtime_adj(X509_getm_notAfter(&certificate), kValidSeconds);
  X509_set_pubkey(&certificate, made.key.get());
  setName(*X509_get_subject_name(&certificate), commonName);
  X509_set_issuer_name(&certificate, X509_get_subject_name(signer.certificate.get()));
  const auto add = [&](int kind, const char* value) { addExtension(certificate, *signer.certificate, kind, value); };
  if (alternativeNames == nullptr) {
    add(NID_basic_constraints, "critical,CA:TRUE");
    add(NID_key_usage, "critical,keyCertSign,cRLSign");
  } else {
    add(NID_subject_alt_name, alternativeNames);
  }
  add(NID_subject_key_identifier, "hash");  // Authorities of several runs have the same name.
  if (issuer != nullptr) {
    add(NID_authority_key_identifier, "keyid");
  }
  require(X509_sign(&certificate, signer.key.get(), EVP_sha256()) > 0, "cannot sign");
  return made;
}

TestCertificate save(const Identity& identity, const std::string& stem) {
  const TestCertificate files{stem + ".pem", stem + ".key"};
  const File certificate = openForWriting(files.certificateFile);
  require(PEM_write_X509(certificate.get(), identity.certificate.get()) == 1, "cannot write a certificate");
  const File key = openForWriting(files.keyFile);
  require(PEM_write_PrivateKey(key.get(), identity.key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
          "cannot write a key");
  return files;
}

std::string makeDirectory() {
  std::string path = std::filesystem::temp_directory_path() / "kesu-certificates-XXXXXX";
  require(mkdtemp(path.data()) != nullptr, "cannot make a directory");
  return path;
}

}  // namespace

TestCertificates::TestCertificates() : TestCertificates(makeDirectory(), true) {}

TestCertificates::TestCertificates(const std::string& directory) : TestCertificates(directory, false) {}

TestCertificates::TestCertificates(std::string directory, bool isTemporary)
    : directory_(std::move(directory)), isTemporary_(isTemporary) {
  constexpr const char* kLoopbackNames = "DNS:localhost,IP:127.0.0.1,IP:::1";
  const Identity authority = makeIdentity("Kesu Test Authority", nullptr, 1, nullptr);
  caFile_ = save(authority, directory_ + "/authority").certificateFile;
  server_ = save(makeIdentity("localhost", kLoopbackNames, 2, &authority), directory_ + "/server");
  wrongHost_ = save(makeIdentity("elsewhere", "DNS:elsewhere.example", 3, &authority), directory_ + "/wrong-host");
  selfSigned_ = save(makeIdentity("localhost", kLoopbackNames, 4, nullptr), directory_ + "/self-signed");
}

TestCertificates::~TestCertificates() {
  if (isTemporary_) {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
}

}  // namespace kesu::testing
