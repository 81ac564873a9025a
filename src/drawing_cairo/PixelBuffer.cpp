#include "drawing_cairo/PixelBuffer.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace kesu {
namespace {

ImageStatus checkSize(std::int64_t width, std::int64_t height, int side, std::size_t pixels) {
  if (width <= 0 || height <= 0) {
    return ImageStatus::Damaged;
  }
  const bool fits = width <= side && height <= side && static_cast<std::size_t>(width * height) <= pixels;
  return fits ? ImageStatus::Decoded : ImageStatus::TooLarge;
}

std::uint32_t multiplied(std::uint32_t channel, std::uint32_t alpha) {
  return (channel * alpha + 127) / 255;
}

std::uint32_t premultiplied(std::uint32_t pixel) {
  const std::uint32_t alpha = pixel >> 24;
  if (alpha == 0xFF) {
    return pixel;
  }
  return alpha << 24 | multiplied(pixel >> 16 & 0xFF, alpha) << 16 | multiplied(pixel >> 8 & 0xFF, alpha) << 8 |
         multiplied(pixel & 0xFF, alpha);
}

}  // namespace

ImageStatus checkImageSize(std::int64_t width, std::int64_t height, const ImageLimits& limits) {
  return checkSize(width, height, limits.side, limits.pixels);
}

ImageStatus checkHeldImageSize(std::int64_t width, std::int64_t height, const ImageLimits& limits) {
  return checkSize(width, height, limits.side, std::min(limits.pixels, limits.progressivePixels));
}

Pixels makePixels(int width, int height) {
  return Pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

void premultiply(Pixels& pixels) {
  std::ranges::transform(pixels, pixels.begin(), premultiplied);
}

DecodedImage decodedImage(int width, int height, Pixels pixels) {
  return {std::make_shared<const Image>(width, height, std::move(pixels)), ImageStatus::Decoded};
}

}  // namespace kesu
