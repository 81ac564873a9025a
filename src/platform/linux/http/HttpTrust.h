#pragma once

#include <curl/curl.h>
#include <openssl/x509.h>

#include <memory>
#include <string>
#include <vector>

namespace kesu {

/// The certificate authorities that the client trusts: those of the system and those of one more file.
///
/// The system's bundle stays in libcurl's own cache (reading it again would cost 20 ms per connection); the extra ones
/// are read once and added to each TLS context. A file that cannot be read is logged and left out, which trusts less,
/// never more. Confined to one thread; must outlive the handles it was applied to.
class HttpTrust {
 public:
  /// `systemCaFile` may be empty: the bundle that libcurl was built for.
  HttpTrust(const std::string& caFile, const std::string& systemCaFile);

  /// Sets the TLS options of a new easy handle. Verification is always on.
  void apply(CURL* handle);

 private:
  struct FreeCertificate {
    void operator()(X509* certificate) const { X509_free(certificate); }
  };

  static CURLcode addExtra(CURL* handle, void* context, void* self);

  std::string bundle_;  ///< Read by libcurl itself.
  std::vector<std::unique_ptr<X509, FreeCertificate>> extra_;
};

}  // namespace kesu
