#pragma once

#include <curl/curl.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/http/HttpUrl.h"

namespace kesu {

/// A URL that was parsed once, by us and by libcurl.
struct HttpKnownUrl {
  struct Cleanup {
    void operator()(CURLU* parsed) const { curl_url_cleanup(parsed); }
  };

  std::string asked;                       ///< As the caller wrote it.
  std::optional<HttpUrl> url;              ///< Nothing when it is not an absolute http(s) URL.
  std::unique_ptr<CURLU, Cleanup> handle;  ///< Of url->text; null where libcurl refuses it.
};

/// Remembers the last few URLs, because nearly all requests go to the same ones: parsing took a third of a request's
/// time. Confined to the network thread.
class HttpUrlCache {
 public:
  /// Returns what is known of a URL, as a caller wrote it or as HttpUrl::text has it. Never null.
  std::shared_ptr<const HttpKnownUrl> find(const std::string& text);

 private:
  std::vector<std::shared_ptr<const HttpKnownUrl>> known_;  ///< The one used last is first.
};

}  // namespace kesu
