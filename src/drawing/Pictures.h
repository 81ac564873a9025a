#pragma once

#include <kesu/graphics/Image.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kesu {

/// What a picture may cost. The defaults are for pictures from the network: decoding any file takes less than 64 MiB,
/// the picture included.
struct ImageLimits {
  /// Largest file in bytes.
  std::size_t inputBytes = std::size_t{8} * 1024 * 1024;

  /// Longest width or height in pixels.
  int side = 4096;

  /// Most pixels: 61 MiB of them, and the rest is for the libraries.
  std::size_t pixels = 16'000'000;

  /// Most pixels of a file that its library holds as a whole beside the picture: a JPEG that is progressive or has its
  /// colours one after the other, a WebP that is lossless or has an opacity.
  std::size_t progressivePixels = std::size_t{4} * 1024 * 1024;
};

/// The result of decoding.
enum class ImageStatus {
  Decoded,      ///< There is a picture.
  UnknownKind,  ///< Neither PNG, JPEG, WebP nor GIF, by its first bytes; or there is no drawing module.
  TooLarge,     ///< Over a limit by its header, before anything was decoded; or there was no memory for it.
  Damaged       ///< Cut short, not what its first bytes say, or of a rare kind that is not read (an animated WebP).
};

struct DecodedImage {
  ImagePtr image;  ///< Null unless Decoded.
  ImageStatus status = ImageStatus::UnknownKind;
};

/// Decodes PNG, JPEG (turned as its EXIF orientation says, CMYK too), WebP and the first frame of a GIF, told apart by
/// their first bytes. Errors in the coded pixels that a library recovers from do not count as damage, a missing end
/// does.
///
/// Any thread, but slow (up to a second for the largest) and loads the drawing module: never the main one. Never
/// throws.
DecodedImage decodeImage(std::string_view bytes, const ImageLimits& limits = {});

/// Encodes a picture as a PNG file, fast rather than small (compression level 1, SUB filter). Any thread, but slow:
/// never the main one. Nothing when out of memory or without a drawing module.
std::optional<std::string> encodePng(const Image& image);

/// Returns the picture scaled to this size in pixels, filtered; proportions are not kept. Null for a width or height
/// that is not positive or over what a decoded picture may have (ImageLimits), and when there is no memory for it or no
/// drawing module. Any thread; about 10 ms for a picture as large as the screen.
ImagePtr scaledImage(const Image& image, int width, int height);

}  // namespace kesu
