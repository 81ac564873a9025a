#pragma once

#include <kesu/platform/UrlOpener.h>

#include <functional>

namespace kesu {

/// Opens URLs with the desktop's "xdg-open", started without a shell; a thread waits for its end, so that no zombie is
/// left. A host's function replaces it, but receives only URLs that may be opened.
class LinuxUrlOpener final : public UrlOpener {
 public:
  using Function = std::function<bool(const std::string& url)>;

  explicit LinuxUrlOpener(Function function = nullptr);

  bool open(const std::string& url) override;

 private:
  Function function_;
};

/// Whether a URL may be opened outside the application: it begins with a scheme (so neither with a blank nor with a
/// dash), but none that reads local files or contains programs (file:, javascript:, vbscript:, data:), and has no
/// control character. Pure.
bool mayOpenUrl(const std::string& url);

}  // namespace kesu
