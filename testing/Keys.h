#pragma once

#include <kesu/foundation/Value.h>

#include <string>

namespace kesu::testing {

/// The keys of a record in their order, separated by blanks.
inline std::string keysOf(const Dictionary& record) {
  std::string keys;
  for (const auto& entry : record) {
    keys += (keys.empty() ? "" : " ") + entry.key;
  }
  return keys;
}

}  // namespace kesu::testing
