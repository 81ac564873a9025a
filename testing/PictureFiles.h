#pragma once

#include <gif_lib.h>
#include <png.h>
#include <turbojpeg.h>
#include <webp/encode.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kesu::testing {

/// What a test picture shows at a place: red, green, blue and opacity, not premultiplied, as 0xAARRGGBB.
using Painter = std::function<std::uint32_t(int x, int y)>;

/// The four bytes of each pixel in the order red, green, blue, opacity.
inline std::vector<std::uint8_t> rgbaBytes(int width, int height, const Painter& paint) {
  std::vector<std::uint8_t> bytes;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t color = paint(x, y);
      for (const int shift : {16, 8, 0, 24}) {
        bytes.push_back(static_cast<std::uint8_t>(color >> shift));
      }
    }
  }
  return bytes;
}

inline std::string pngFile(int width, int height, const Painter& paint) {
  const auto rgba = rgbaBytes(width, height, paint);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(width);
  image.height = static_cast<png_uint_32>(height);
  image.format = PNG_FORMAT_RGBA;
  std::string file(rgba.size() + 100'000, '\0');
  png_alloc_size_t size = file.size();
  png_image_write_to_memory(&image, file.data(), &size, 0, rgba.data(), 0, nullptr);
  file.resize(size);
  return file;
}

/// `format` is TJPF_RGBA, or TJPF_CMYK where the painter's four channels are inks; `flags` may be TJFLAG_PROGRESSIVE.
inline std::string jpegFile(int width, int height, const Painter& paint, int format = TJPF_RGBA, int flags = 0) {
  const auto rgba = rgbaBytes(width, height, paint);
  auto* const turbo = tjInitCompress();
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  tjCompress2(turbo, rgba.data(), width, 0, height, format, &bytes, &size, TJSAMP_444, 95, flags);
  std::string file(reinterpret_cast<char*>(bytes), size);
  tjFree(bytes);
  tjDestroy(turbo);
  return file;
}

inline std::string webpFile(int width, int height, const Painter& paint, bool lossless = true) {
  const auto rgba = rgbaBytes(width, height, paint);
  std::uint8_t* bytes = nullptr;
  const std::size_t size = lossless ? WebPEncodeLosslessRGBA(rgba.data(), width, height, width * 4, &bytes)
                                    : WebPEncodeRGBA(rgba.data(), width, height, width * 4, 95.0F, &bytes);
  std::string file(reinterpret_cast<char*>(bytes), size);
  WebPFree(bytes);
  return file;
}

/// One frame somewhere on a canvas; the painter returns indices of the palette.
struct GifLayout {
  int canvasWidth = 0;
  int canvasHeight = 0;
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
  bool isInterlaced = false;
  int transparent = NO_TRANSPARENT_COLOR;
};

inline std::string gifFile(const GifLayout& layout, const std::vector<GifColorType>& colors, const Painter& index) {
  std::string file;
  const auto append = [](GifFileType* gif, const GifByteType* bytes, int count) {
    static_cast<std::string*>(gif->UserData)->append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    return count;
  };
  GifFileType* gif = EGifOpen(&file, append, nullptr);
  EGifSetGifVersion(gif, true);
  ColorMapObject* map = GifMakeMapObject(static_cast<int>(colors.size()), colors.data());
  EGifPutScreenDesc(gif, layout.canvasWidth, layout.canvasHeight, 8, 0, map);
  const GraphicsControlBlock control{0, false, 0, layout.transparent};
  GifByteType block[4];
  const auto length = EGifGCBToExtension(&control, block);
  EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(length), block);
  EGifPutImageDesc(gif, layout.left, layout.top, layout.width, layout.height, layout.isInterlaced, nullptr);
  std::vector<GifPixelType> row(static_cast<std::size_t>(layout.width));
  const auto putRows = [&](int first, int step) {
    for (int y = first; y < layout.height; y += step) {
      for (int x = 0; x < layout.width; ++x) {
        row[static_cast<std::size_t>(x)] = static_cast<GifPixelType>(index(x, y));
      }
      EGifPutLine(gif, row.data(), layout.width);
    }
  };
  if (layout.isInterlaced) {
    putRows(0, 8);
    putRows(4, 8);
    putRows(2, 4);
    putRows(1, 2);
  } else {
    putRows(0, 1);
  }
  EGifCloseFile(gif, nullptr);
  GifFreeMapObject(map);
  return file;
}

/// The file with `bytes` written over what lies at `offset`.
inline std::string patched(std::string file, std::size_t offset, std::string_view bytes) {
  return file.replace(offset, bytes.size(), bytes);
}

/// The file with `bytes` put in at `offset`.
inline std::string inserted(std::string file, std::size_t offset, std::string_view bytes) {
  return file.insert(offset, bytes);
}

/// A PNG chunk with its length and check sum.
inline std::string pngChunk(const std::string& name, const std::string& content) {
  const auto number = [](std::uint32_t value) {
    std::string bytes;
    for (const int shift : {24, 16, 8, 0}) {
      bytes.push_back(static_cast<char>(value >> shift));
    }
    return bytes;
  };
  std::uint32_t crc = 0xFFFFFFFFU;
  for (const char character : name + content) {
    crc ^= static_cast<std::uint8_t>(character);
    for (int bit = 0; bit < 8; ++bit) {
      crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320U : crc >> 1;
    }
  }
  return number(static_cast<std::uint32_t>(content.size())) + name + content + number(~crc);
}

/// An EXIF segment that contains only an orientation, to be inserted at offset 2 of a JPEG.
inline std::string exifSegment(int orientation, bool littleEndian) {
  std::string tiff = littleEndian ? std::string("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18)
                                  : std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01", 18);
  const char number = static_cast<char>(orientation);
  tiff += littleEndian ? std::string{number, 0, 0, 0} : std::string{0, number, 0, 0};
  return std::string("\xFF\xE1\0", 3) + static_cast<char>(tiff.size() + 8) + std::string("Exif\0\0", 6) + tiff;
}

}  // namespace kesu::testing
