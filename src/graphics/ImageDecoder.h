#pragma once

#include <kesu/graphics/Image.h>

#include <cstddef>
#include <string_view>

namespace kesu {

/// What a picture may cost. The defaults are for pictures from the network.
struct ImageLimits {
  std::size_t inputBytes = std::size_t{8} * 1024 * 1024;
  int side = 4096;                                          ///< Longest width or height in pixels.
  std::size_t pixels = std::size_t{16} * 1024 * 1024;       ///< Most pixels.
  std::size_t progressivePixels = std::size_t{4} * 1024 * 1024;  ///< Most pixels of a progressive JPEG.
};

/// What came of decoding.
enum class ImageStatus {
  Decoded,      ///< There is a picture.
  UnknownKind,  ///< Neither PNG, JPEG, WebP nor GIF, by its first bytes.
  TooLarge,     ///< Over a limit; nothing was decoded.
  Damaged       ///< Cut short or not what its first bytes say.
};

struct DecodedImage {
  ImagePtr image;  ///< Null unless Decoded.
  ImageStatus status = ImageStatus::UnknownKind;
};

/// Decodes PNG, JPEG (turned as its EXIF orientation says, CMYK too), WebP and the first frame of a GIF, told apart by
/// their first bytes. Any thread, but slow: never the main one. Never throws; memory stays within what the limits allow.
DecodedImage decodeImage(std::string_view bytes, const ImageLimits& limits = {});

}  // namespace kesu
