#pragma once

#include <kesu/Export.h>

#include <string>

namespace kesu {

/// Opens URLs outside the application. Main thread.
class KESU_API UrlOpener {
 public:
  virtual ~UrlOpener() = default;

  /// Passes a URL to the system. Returns whether it was accepted. Only http:, https: and application schemes are
  /// opened: control characters, a leading dash, file: and javascript: are refused.
  virtual bool open(const std::string& url) = 0;
};

}  // namespace kesu
