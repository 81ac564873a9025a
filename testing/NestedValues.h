#pragma once

#include <kesu/foundation/Value.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace kesu::testing {

inline std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) {
    all.append(text);
  }
  return all;
}

/// A text within so many arrays.
inline Value nestedArrays(std::size_t levels) {
  Value value("core");
  for (std::size_t i = 0; i < levels; ++i) {
    Array array;
    array.push_back(std::move(value));
    value = Value(std::move(array));
  }
  return value;
}

}  // namespace kesu::testing
