#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "drawing/Pictures.h"

namespace kesu {

/// The pixels of a later Image: rows from the top, 0xAARRGGBB. Decoders write them as bytes in the order blue,
/// green, red, opacity, which is the same on little-endian machines.
using Pixels = std::vector<std::uint32_t>;
static_assert(std::endian::native == std::endian::little, "decoders are told BGRA");

inline std::uint8_t* bytesOf(Pixels& pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels.data());
}

/// Whether a picture of this size may be decoded: Decoded when so, TooLarge over a limit, Damaged without any pixel.
ImageStatus checkImageSize(std::int64_t width, std::int64_t height, const ImageLimits& limits);

/// The same for a file that its library holds as a whole beside the picture.
ImageStatus checkHeldImageSize(std::int64_t width, std::int64_t height, const ImageLimits& limits);

/// All pixels of a picture, transparent. The size has passed checkImageSize().
Pixels makePixels(int width, int height);

/// Multiplies the colours of every pixel by its opacity, rounding to nearest.
void premultiply(Pixels& pixels);

/// The picture, which takes over the pixels; they are premultiplied.
DecodedImage decodedImage(int width, int height, Pixels pixels);

inline DecodedImage notDecoded(ImageStatus status) {
  return {nullptr, status};
}

}  // namespace kesu
