#pragma once

#include <curl/curl.h>
#include <kesu/platform/HttpClient.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace kesu {

/// The headers of one transfer as libcurl wants them. They are made again only where a request has others than the one
/// before: most differ in the length of their body alone, which is written into its line.
class HttpHeaderList {
 public:
  /// Changes the list into that of a request. Returns whether get() must be handed to libcurl again.
  bool update(const HttpRequest& request);

  /// The list; valid until the next update().
  curl_slist* get() { return nodes_.data(); }

 private:
  bool fits(const HttpRequest& request) const;
  void writeLength(std::size_t length);

  std::vector<std::pair<std::string, std::string>> headers_;  ///< Of the request before.
  std::size_t lengthHeader_ = 0;  ///< Which of them is its length; their number when none is.
  bool hasBody_ = false;
  std::vector<std::string> lines_;
  std::size_t lengthLine_ = 0;
  std::vector<curl_slist> nodes_;  ///< Of the lines; empty before the first request.
};

}  // namespace kesu
