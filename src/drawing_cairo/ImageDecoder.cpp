#include "drawing_cairo/ImageDecoder.h"

#include <new>

#include "drawing_cairo/GifDecoder.h"
#include "drawing_cairo/JpegDecoder.h"
#include "drawing_cairo/PixelBuffer.h"
#include "drawing_cairo/PngDecoder.h"
#include "drawing_cairo/WebpDecoder.h"

namespace kesu {
namespace {

using Decoder = DecodedImage (*)(std::string_view, const ImageLimits&);

constexpr std::size_t kWebpNameOffset = 8;

Decoder decoderFor(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) {
    return decodePng;
  }
  if (bytes.starts_with("\xFF\xD8\xFF")) {
    return decodeJpeg;
  }
  if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) {
    return decodeGif;
  }
  if (bytes.starts_with("RIFF") && bytes.substr(0, kWebpNameOffset + 4).ends_with("WEBP")) {
    return decodeWebp;
  }
  return nullptr;
}

}  // namespace

DecodedImage decodePicture(std::string_view bytes, const ImageLimits& limits) {
  const Decoder decoder = decoderFor(bytes);
  if (decoder == nullptr) {
    return notDecoded(ImageStatus::UnknownKind);
  }
  if (bytes.size() > limits.inputBytes) {
    return notDecoded(ImageStatus::TooLarge);
  }
  try {
    return decoder(bytes, limits);
  } catch (const std::bad_alloc&) {
    return notDecoded(ImageStatus::TooLarge);
  }
}

}  // namespace kesu
