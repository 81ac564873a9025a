#include "platform/linux/http/HttpTrust.h"

#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <unistd.h>

#include "platform/ServiceLog.h"

namespace kesu {
namespace {

using Bio = std::unique_ptr<BIO, decltype(&BIO_free_all)>;

// libcurl knows where the distribution keeps its bundle.
std::string systemBundle() {
  const char* const path = curl_version_info(CURLVERSION_NOW)->cainfo;
  return path != nullptr ? path : "";
}

}  // namespace

HttpTrust::HttpTrust(const std::string& caFile, const std::string& systemCaFile)
    : bundle_(systemCaFile.empty() ? systemBundle() : systemCaFile) {
  if (caFile.empty()) {
    return;
  }
  const Bio file(BIO_new_file(caFile.c_str(), "r"), &BIO_free_all);
  while (file != nullptr) {
    X509* const certificate = PEM_read_bio_X509(file.get(), nullptr, nullptr, nullptr);
    if (certificate == nullptr) {
      break;
    }
    extra_.emplace_back(certificate);
  }
  ERR_clear_error();  // The end of the file is an error to OpenSSL.
  // libcurl would refuse every connection over a bundle that is not there, even where the extra authorities suffice.
  if (::access(bundle_.c_str(), R_OK) != 0) {
    bundle_ = caFile;
  }
  if (extra_.empty()) {
    serviceLog(2, "No certificate authority could be read from " + caFile);
  }
}

void HttpTrust::apply(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
  curl_easy_setopt(handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
  curl_easy_setopt(handle, CURLOPT_CAPATH, nullptr);  // A directory would rule out libcurl's cache of authorities.
  curl_easy_setopt(handle, CURLOPT_CAINFO, bundle_.c_str());
  curl_easy_setopt(handle, CURLOPT_SSL_CTX_FUNCTION, &HttpTrust::addExtra);
  curl_easy_setopt(handle, CURLOPT_SSL_CTX_DATA, this);
}

CURLcode HttpTrust::addExtra(CURL*, void* context, void* self) {
  X509_STORE* const store = SSL_CTX_get_cert_store(static_cast<SSL_CTX*>(context));
  for (const auto& certificate : static_cast<HttpTrust*>(self)->extra_) {
    X509_STORE_add_cert(store, certificate.get());  // One that is there already is no error.
  }
  return CURLE_OK;
}

}  // namespace kesu
