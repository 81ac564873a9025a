#include "drawing_cairo/JpegDecoder.h"

#include <turbojpeg.h>

#include <memory>
#include <utility>

#include "drawing_cairo/JpegHeader.h"
#include "drawing_cairo/PixelBuffer.h"

namespace kesu {
namespace {

struct TurboCloser {
  void operator()(void* decoder) const { tjDestroy(decoder); }
};
using TurboHandle = std::unique_ptr<void, TurboCloser>;

constexpr int kInkColors = 4;

/// A pixel whose bytes are cyan, magenta, yellow and black, 255 meaning no ink.
std::uint32_t withoutInk(std::uint32_t inks) {
  const std::uint32_t black = inks >> 24;
  const auto shown = [&](int shift) { return ((inks >> shift & 0xFF) * black + 127) / 255; };
  return 0xFF000000U | shown(0) << 16 | shown(8) << 8 | shown(16);
}

void convertInks(Pixels& pixels, bool isInverted) {
  for (std::uint32_t& pixel : pixels) {
    pixel = withoutInk(isInverted ? pixel : ~pixel);
  }
}

/// The library calls every failure a warning once there was one: only the last pixel tells whether it came to the end.
/// Ink pixels do not tell, so that these are taken without any warning alone.
bool wasBridged(tjhandle turbo, int format, const Pixels& pixels) {
  return tjGetErrorCode(turbo) == TJERR_WARNING && format == TJPF_BGRA && pixels.back() >> 24 == 0xFF;
}

bool readPixels(std::string_view bytes, const JpegHeader& header, int format, Pixels& pixels) {
  const TurboHandle turbo(tjInitDecompress());
  if (!turbo) {
    return false;
  }
  const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
  return tjDecompress2(turbo.get(), data, static_cast<unsigned long>(bytes.size()), bytesOf(pixels), header.width, 0,
                       header.height, format, TJFLAG_LIMITSCANS) == 0 ||
         wasBridged(turbo.get(), format, pixels);
}

}  // namespace

DecodedImage decodeJpeg(std::string_view bytes, const ImageLimits& limits) {
  const auto header = readJpegHeader(bytes);
  if (!header) {
    return notDecoded(ImageStatus::Damaged);
  }
  const ImageStatus status = header->isInPieces ? checkHeldImageSize(header->width, header->height, limits)
                                                : checkImageSize(header->width, header->height, limits);
  if (status != ImageStatus::Decoded) {
    return notDecoded(status);
  }
  int width = header->width;
  int height = header->height;
  const bool isInk = header->components == kInkColors;
  Pixels pixels = makePixels(width, height);
  if (!readPixels(bytes, *header, isInk ? TJPF_CMYK : TJPF_BGRA, pixels)) {
    return notDecoded(ImageStatus::Damaged);
  }
  if (isInk) {
    convertInks(pixels, header->isAdobe);
  }
  turnUpright(pixels, width, height, header->orientation);
  return decodedImage(width, height, std::move(pixels));
}

}  // namespace kesu
