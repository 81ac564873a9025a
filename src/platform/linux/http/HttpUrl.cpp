#include "platform/linux/http/HttpUrl.h"

#include <curl/curl.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace kesu {
namespace {

using UrlHandle = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

std::string part(CURLU* url, CURLUPart which, unsigned int flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url, which, &text, flags) != CURLUE_OK) {
    return {};
  }
  const std::unique_ptr<char, decltype(&curl_free)> owned(text, &curl_free);
  return text;
}

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return text;
}

std::string withoutBrackets(const std::string& host) {
  return host.size() > 2 && host.front() == '[' ? host.substr(1, host.size() - 2) : host;
}

}  // namespace

std::optional<HttpUrl> parseHttpUrl(const std::string& text) {
  if (text.find('\0') != std::string::npos) {
    return std::nullopt;
  }
  const UrlHandle url(curl_url(), &curl_url_cleanup);
  if (url == nullptr || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) {
    return std::nullopt;
  }
  const std::string scheme = lowerCase(part(url.get(), CURLUPART_SCHEME));
  if (scheme != "http" && scheme != "https") {
    return std::nullopt;
  }
  curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
  curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
  curl_url_set(url.get(), CURLUPART_FRAGMENT, nullptr, 0);
  HttpUrl made;
  made.origin.secure = scheme == "https";
  made.origin.host = lowerCase(withoutBrackets(part(url.get(), CURLUPART_HOST)));
  const std::string port = part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
  std::from_chars(port.data(), port.data() + port.size(), made.origin.port);
  made.text = part(url.get(), CURLUPART_URL);
  if (made.origin.host.empty() || made.text.empty()) {
    return std::nullopt;
  }
  return made;
}

}  // namespace kesu
