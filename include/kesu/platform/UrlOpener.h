#pragma once

#include <kesu/Export.h>

#include <string>

namespace kesu {

/// Opens URLs outside the application. Main thread.
class KESU_API UrlOpener {
 public:
  virtual ~UrlOpener() = default;

  /// Hands a URL to the system. Returns whether somebody took it. Only http:, https: and application schemes are ever
  /// opened: control characters, a leading dash, file: and javascript: are refused.
  virtual bool open(const std::string& url) = 0;
};

}  // namespace kesu
