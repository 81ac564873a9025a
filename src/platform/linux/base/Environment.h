#pragma once

#include <cstdlib>
#include <string>

namespace kesu {

/// The environment variable `name`; "" when it is not set. A variable that is set to nothing counts as not set.
inline std::string environmentText(const char* name) {
  const char* text = std::getenv(name);
  return text != nullptr ? std::string(text) : std::string();
}

}  // namespace kesu
