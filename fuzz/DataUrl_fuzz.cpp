// Fuzzes: drawing
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "drawing/DataUrl.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view url{reinterpret_cast<const char*>(data), size};
  const auto carried = kesu::dataOfUrl(url);
  kesu::fuzz::require(!carried || (kesu::isDataUrl(url) && carried->size() <= size));
  return 0;
}
