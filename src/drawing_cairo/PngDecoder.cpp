#include "drawing_cairo/PngDecoder.h"

#include <png.h>

#include <utility>

#include "drawing_cairo/PixelBuffer.h"
#include "drawing_cairo/PngChunks.h"

namespace kesu {
namespace {

/// The library's state while one file is read. Its simplified interface never jumps out of a function.
class PngReader {
 public:
  explicit PngReader(std::string_view png) {
    image_.version = PNG_IMAGE_VERSION;
    isOpen_ = png_image_begin_read_from_memory(&image_, png.data(), png.size()) != 0;
    image_.format = PNG_FORMAT_BGRA;
    image_.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
  }
  ~PngReader() { png_image_free(&image_); }

  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  bool isOpen(const PngHeader& header) const {
    return isOpen_ && image_.width == header.width && image_.height == header.height;
  }
  bool read(Pixels& pixels) { return png_image_finish_read(&image_, nullptr, pixels.data(), 0, nullptr) != 0; }

 private:
  png_image image_{};
  bool isOpen_ = false;
};

DecodedImage decodeLean(std::string_view png, const PngHeader& header) {
  PngReader reader(png);
  if (!reader.isOpen(header)) {
    return notDecoded(ImageStatus::Damaged);
  }
  Pixels pixels = makePixels(static_cast<int>(header.width), static_cast<int>(header.height));
  if (!reader.read(pixels)) {
    return notDecoded(ImageStatus::Damaged);
  }
  premultiply(pixels);
  return decodedImage(static_cast<int>(header.width), static_cast<int>(header.height), std::move(pixels));
}

}  // namespace

DecodedImage decodePng(std::string_view bytes, const ImageLimits& limits) {
  const auto header = readPngHeader(bytes);
  const ImageStatus status = header ? checkImageSize(header->width, header->height, limits) : ImageStatus::Damaged;
  if (status != ImageStatus::Decoded) {
    return notDecoded(status);
  }
  const auto lean = pngWithoutExtras(bytes);
  if (!lean) {
    return decodeLean(bytes, *header);
  }
  // A copy of the file counts as the pixels that would fit in its place.
  const std::size_t pixels = static_cast<std::size_t>(header->width * header->height);
  if (pixels + lean->size() / sizeof(std::uint32_t) > limits.pixels) {
    return notDecoded(ImageStatus::TooLarge);
  }
  return decodeLean(*lean, *header);
}

}  // namespace kesu
