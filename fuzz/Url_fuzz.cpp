// Fuzzes: platform/linux/http
#include <curl/curl.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "Require.h"
#include "foundation/Text.h"
#include "foundation/Url.h"
#include "platform/linux/http/HttpUrl.h"

namespace {

using kesu::fuzz::require;

std::string partOf(CURLU* url, CURLUPart part) {
  char* text = nullptr;
  require(curl_url_get(url, part, &text, CURLU_DEFAULT_PORT) == CURLUE_OK);
  const std::unique_ptr<char, void (*)(void*)> owned(text, &curl_free);
  return text;
}

// Where libcurl went to another host than the rules about origins know, records could leave for it.
void checkAgainstLibcurl(const kesu::HttpUrl& url) {
  const std::unique_ptr<CURLU, void (*)(CURLU*)> known(curl_url(), &curl_url_cleanup);
  if (curl_url_set(known.get(), CURLUPART_URL, url.text.c_str(), 0) == CURLUE_OK) {
    const std::string host = partOf(known.get(), CURLUPART_HOST);
    require(partOf(known.get(), CURLUPART_PORT) == std::to_string(url.origin.port));
    require(partOf(known.get(), CURLUPART_SCHEME) == (url.origin.secure ? "https" : "http"));
    // libcurl decodes %xx in names, and rewrites addresses; a zone stands apart.
    const bool isRewritten =
        host.starts_with('[') || url.origin.host.find_first_not_of("0123456789.xabcdef") == std::string::npos;
    require(isRewritten || url.origin.host.find('%') != std::string::npos ||
            kesu::asciiLowerCase(host) == url.origin.host);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (const auto parts = kesu::splitUrl(text)) {
    require(text ==
            std::string(parts->scheme).append(parts->user).append(parts->host).append(parts->port).append(parts->rest));
  }
  if (const auto url = kesu::parseHttpUrl(text)) {
    const auto again = kesu::parseHttpUrl(url->text);
    require(again && again->origin == url->origin && again->text == url->text);
    require(url->text.find('#') == std::string::npos);
    checkAgainstLibcurl(*url);
  }
  return 0;
}
