#include "drawing_cairo/WebpDecoder.h"

#include <webp/decode.h>

#include <cstddef>
#include <optional>
#include <utility>

#include "drawing_cairo/PixelBuffer.h"
#include "drawing_cairo/WebpTables.h"

namespace kesu {
namespace {

constexpr int kLosslessFormat = 2;
constexpr std::size_t kTablesLimitBytes = std::size_t{24} * 1024 * 1024;  // Some 2,000 groups; encoders make hundreds.

const std::uint8_t* dataOf(std::string_view bytes) {
  return reinterpret_cast<const std::uint8_t*>(bytes.data());
}

ImageStatus check(const WebPBitstreamFeatures& features, const ImageLimits& limits) {
  if (features.has_animation != 0) {
    return ImageStatus::Damaged;
  }
  const bool isHeld = features.format == kLosslessFormat || features.has_alpha != 0;
  return isHeld ? checkHeldImageSize(features.width, features.height, limits)
                : checkImageSize(features.width, features.height, limits);
}

bool readPixels(std::string_view bytes, WebPDecoderConfig& config, Pixels& pixels) {
  config.output.colorspace = MODE_BGRA;
  config.output.is_external_memory = 1;
  config.output.u.RGBA.rgba = bytesOf(pixels);
  config.output.u.RGBA.stride = config.input.width * static_cast<int>(sizeof(std::uint32_t));
  config.output.u.RGBA.size = pixels.size() * sizeof(std::uint32_t);
  const bool isRead = WebPDecode(dataOf(bytes), bytes.size(), &config) == VP8_STATUS_OK;
  WebPFreeDecBuffer(&config.output);
  return isRead;
}

}  // namespace

DecodedImage decodeWebp(std::string_view bytes, const ImageLimits& limits) {
  WebPDecoderConfig config;
  if (WebPInitDecoderConfig(&config) == 0 ||
      WebPGetFeatures(dataOf(bytes), bytes.size(), &config.input) != VP8_STATUS_OK) {
    return notDecoded(ImageStatus::Damaged);
  }
  const ImageStatus status = check(config.input, limits);
  if (status != ImageStatus::Decoded) {
    return notDecoded(status);
  }
  const std::optional<std::size_t> tables = webpTableBytes(bytes);
  if (!tables || *tables > kTablesLimitBytes) {
    return notDecoded(tables ? ImageStatus::TooLarge : ImageStatus::Damaged);
  }
  Pixels pixels = makePixels(config.input.width, config.input.height);
  if (!readPixels(bytes, config, pixels)) {
    return notDecoded(ImageStatus::Damaged);
  }
  premultiply(pixels);
  return decodedImage(config.input.width, config.input.height, std::move(pixels));
}

}  // namespace kesu
