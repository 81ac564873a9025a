#pragma once

#include <kesu/platform/UrlOpener.h>

#include <functional>

namespace kesu {

/// Opens URLs with the desktop's "xdg-open", started without a shell; a thread of its own waits for its end, so that no
/// zombie stays. A host's function takes its place, but sees only URLs that may be opened.
class LinuxUrlOpener final : public UrlOpener {
 public:
  using Function = std::function<bool(const std::string& url)>;

  explicit LinuxUrlOpener(Function function = nullptr);

  bool open(const std::string& url) override;

 private:
  Function function_;
};

/// Whether a URL may leave the application: it begins with a scheme (so neither with a blank nor with a dash), the
/// scheme is none of those that read local files or carry programs (file:, javascript:, vbscript:, data:), and no
/// control character stands in it.
bool mayOpenUrl(const std::string& url);

}  // namespace kesu
