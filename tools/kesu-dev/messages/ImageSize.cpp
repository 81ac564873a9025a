#include "tools/kesu-dev/messages/ImageSize.h"

#include <cstddef>
#include <string>

#include "tools/kesu-dev/base/Text.h"

namespace kesu::dev {
namespace {

constexpr std::string_view kPngMark = "\x89PNG\r\n\x1a\n";

// The whole number in `count` bytes at `at`; 0 beyond the end.
int bigEndian(std::string_view bytes, std::size_t at, std::size_t count) {
  unsigned number = 0;
  for (std::size_t i = at; i < at + count && i < bytes.size(); ++i) {
    number = (number << 8U) | static_cast<unsigned char>(bytes[i]);
  }
  return static_cast<int>(number);
}

int littleEndian(std::string_view bytes, std::size_t at, std::size_t count) {
  unsigned number = 0;
  for (std::size_t i = count; i > 0; --i) {
    number = (number << 8U) | (at + i <= bytes.size() ? static_cast<unsigned char>(bytes[at + i - 1]) : 0U);
  }
  return static_cast<int>(number);
}

bool isFrameHeader(int marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Walks over the segments of a JPEG file up to the one that tells the size.
ImageSize jpegSize(std::string_view file) {
  std::size_t at = 2;
  while (at + 9 <= file.size() && file[at] == '\xFF') {
    const int marker = bigEndian(file, at + 1, 1);
    if (isFrameHeader(marker)) {
      return {bigEndian(file, at + 7, 2), bigEndian(file, at + 5, 2)};
    }
    // A fill byte stands alone; every other segment tells its length.
    at += marker == 0xFF ? 1 : 2 + static_cast<std::size_t>(bigEndian(file, at + 2, 2));
  }
  return {};
}

ImageSize webpSize(std::string_view file) {
  const std::string_view form = file.substr(12, 4);
  if (form == "VP8X") {
    return {littleEndian(file, 24, 3) + 1, littleEndian(file, 27, 3) + 1};
  }
  if (form == "VP8L") {
    const auto bits = static_cast<unsigned>(littleEndian(file, 21, 4));
    return {static_cast<int>(bits & 0x3FFFU) + 1, static_cast<int>((bits >> 14U) & 0x3FFFU) + 1};
  }
  return {littleEndian(file, 26, 2) & 0x3FFF, littleEndian(file, 28, 2) & 0x3FFF};
}

ImageSize sizeIn(std::string_view file) {
  if (file.starts_with(kPngMark) && file.size() >= 24) {
    return {bigEndian(file, 16, 4), bigEndian(file, 20, 4)};
  }
  if (file.starts_with("\xFF\xD8")) {
    return jpegSize(file);
  }
  if ((file.starts_with("GIF87a") || file.starts_with("GIF89a")) && file.size() >= 10) {
    return {littleEndian(file, 6, 2), littleEndian(file, 8, 2)};
  }
  if (file.starts_with("RIFF") && file.size() >= 30 && file.substr(8, 4) == "WEBP") {
    return webpSize(file);
  }
  return {};
}

}  // namespace

std::optional<ImageSize> imageSize(std::string_view file) {
  const ImageSize size = sizeIn(file);
  return size.width > 0 && size.height > 0 ? std::optional(size) : std::nullopt;
}

std::string_view imageType(std::string_view fileName) {
  const std::string name = lowerAscii(fileName);
  if (name.ends_with(".jpg") || name.ends_with(".jpeg")) {
    return "image/jpeg";
  }
  if (name.ends_with(".png")) {
    return "image/png";
  }
  if (name.ends_with(".gif")) {
    return "image/gif";
  }
  return name.ends_with(".webp") ? "image/webp" : "";
}

}  // namespace kesu::dev
