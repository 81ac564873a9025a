#include "foundation/Digest.h"

#include <openssl/evp.h>
#include <openssl/provider.h>

namespace kesu {
namespace {

// Looked up once and kept: a look-up by name costs more than the digest of a short text.
const EVP_MD* algorithm(const char* name) {
  if (const EVP_MD* found = EVP_MD_fetch(nullptr, name, nullptr)) {
    return found;
  }
  // A machine under a strict policy hides some algorithms from programs; a context of our own shows them.
  OSSL_LIB_CTX* own = OSSL_LIB_CTX_new();
  OSSL_PROVIDER_load(own, "default");
  return EVP_MD_fetch(own, name, nullptr);
}

template <typename Digest>
Digest digestOf(std::string_view bytes, const EVP_MD* kind) {
  Digest digest{};
  EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, kind, nullptr);
  return digest;
}

}  // namespace

Sha256Digest sha256(std::string_view bytes) {
  static const EVP_MD* const kind = algorithm("SHA256");
  return digestOf<Sha256Digest>(bytes, kind);
}

Md5Digest md5(std::string_view bytes) {
  static const EVP_MD* const kind = algorithm("MD5");
  return digestOf<Md5Digest>(bytes, kind);
}

std::string hexLower(std::span<const std::uint8_t> bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

}  // namespace kesu
