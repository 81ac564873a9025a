#pragma once

#include <kesu/platform/UrlOpener.h>

#include <string>
#include <vector>

namespace kesu::testing {

/// Keeps the URLs that it should open.
class RecordingUrlOpener : public UrlOpener {
 public:
  bool open(const std::string& url) override {
    urls.push_back(url);
    return answer;
  }

  std::vector<std::string> urls;  ///< In the order of the calls.
  bool answer = true;             ///< What open() returns.
};

}  // namespace kesu::testing
