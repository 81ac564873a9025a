#include "tools/kesu-dev/messages/ImageSize.h"

#include <webp/decode.h>

#include <cstdint>
#include <utility>

#include "drawing_cairo/BigEndian.h"
#include "drawing_cairo/JpegHeader.h"
#include "drawing_cairo/PngChunks.h"
#include "foundation/Text.h"

namespace kesu::dev {
namespace {

constexpr std::size_t kGifHeadBytes = 10;

ImageSize gifSize(std::string_view file) {
  const auto number = [&](std::size_t at) { return static_cast<int>(byteAt(file, at + 1) << 8U | byteAt(file, at)); };
  return {number(6), number(8)};
}

ImageSize webpSize(std::string_view file) {
  ImageSize size;
  const bool isWebp =
      WebPGetInfo(reinterpret_cast<const std::uint8_t*>(file.data()), file.size(), &size.width, &size.height) != 0;
  return isWebp ? size : ImageSize();
}

ImageSize sizeIn(std::string_view file) {
  if (file.starts_with("\x89PNG\r\n\x1a\n")) {
    const PngHeader header = readPngHeader(file).value_or(PngHeader());
    return {static_cast<int>(header.width), static_cast<int>(header.height)};
  }
  if (file.starts_with("\xFF\xD8")) {
    const JpegHeader header = readJpegHeader(file).value_or(JpegHeader());
    return {header.width, header.height};
  }
  const bool isGif = file.size() >= kGifHeadBytes && (file.starts_with("GIF87a") || file.starts_with("GIF89a"));
  return isGif ? gifSize(file) : webpSize(file);
}

}  // namespace

std::optional<ImageSize> imageSize(std::string_view file) {
  const ImageSize size = sizeIn(file);
  return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

std::string_view imageType(std::string_view fileName) {
  constexpr std::pair<std::string_view, std::string_view> kTypes[] = {{"jpg", "image/jpeg"},
                                                                      {"jpeg", "image/jpeg"},
                                                                      {"png", "image/png"},
                                                                      {"gif", "image/gif"},
                                                                      {"webp", "image/webp"}};
  for (const auto& [extension, type] : kTypes) {
    if (equalsIgnoringCase(pathExtension(fileName), extension)) {
      return type;
    }
  }
  return "";
}

}  // namespace kesu::dev
