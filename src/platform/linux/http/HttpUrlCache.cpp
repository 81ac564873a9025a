#include "platform/linux/http/HttpUrlCache.h"

#include <algorithm>
#include <utility>

namespace kesu {
namespace {

// The collector, the routes of the messaging service, a few pictures.
constexpr std::size_t kMaxKnownUrls = 16;

std::shared_ptr<const HttpKnownUrl> parsed(const std::string& text) {
  auto made = std::make_shared<HttpKnownUrl>();
  made->asked = text;
  made->url = parseHttpUrl(text);
  if (made->url) {
    made->handle.reset(curl_url());
    if (curl_url_set(made->handle.get(), CURLUPART_URL, made->url->text.c_str(), 0) != CURLUE_OK) {
      made->handle.reset();
    }
  }
  return made;
}

}  // namespace

std::shared_ptr<const HttpKnownUrl> HttpUrlCache::find(const std::string& text) {
  const auto found = std::find_if(known_.begin(), known_.end(), [&](const auto& known) {
    return known->asked == text || (known->url && known->url->text == text);
  });
  if (found != known_.end()) {
    std::rotate(known_.begin(), found, found + 1);
    return known_.front();
  }
  if (known_.size() >= kMaxKnownUrls) {
    known_.pop_back();
  }
  return *known_.insert(known_.begin(), parsed(text));
}

}  // namespace kesu
