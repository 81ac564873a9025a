// Fuzzes: drawing
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "drawing/Pictures.h"

namespace {

// Small pictures find the same faults as large ones, many times faster.
constexpr kesu::ImageLimits kLimits{1 << 16, 512, 1 << 16, 1 << 14};

bool isCoherent(const kesu::DecodedImage& decoded) {
  if (decoded.status != kesu::ImageStatus::Decoded) {
    return decoded.image == nullptr;
  }
  const kesu::Image& image = *decoded.image;
  const auto side = kLimits.side;
  const std::size_t pixels = image.byteCount() / sizeof(std::uint32_t);
  return image.width() > 0 && image.width() <= side && image.height() > 0 && image.height() <= side &&
         pixels == static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kesu::fuzz::require(isCoherent(kesu::decodeImage({reinterpret_cast<const char*>(data), size}, kLimits)));
  return 0;
}
