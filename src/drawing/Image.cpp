#include <kesu/graphics/Image.h>

#include <algorithm>
#include <utility>

namespace kesu {

Image::Image(int width, int height, std::vector<std::uint32_t> pixels)
    : width_(width),
      height_(height),
      isOpaque_(std::all_of(pixels.begin(), pixels.end(), [](std::uint32_t pixel) { return (pixel >> 24) == 0xFF; })),
      pixels_(std::move(pixels)) {}

}  // namespace kesu
