#include "drawing_cairo/PngChunks.h"

#include <algorithm>

#include "drawing_cairo/BigEndian.h"

namespace kesu {
namespace {

constexpr std::size_t kSignatureBytes = 8;
constexpr std::size_t kChunkOverhead = 12;  // Length, name and check sum.

constexpr std::string_view kPictureChunks[] = {"IHDR", "PLTE", "tRNS", "IDAT", "IEND"};

// Small whatever the file says: their length is fixed, or bounded by the palette.
constexpr std::string_view kSmallChunks[] = {"gAMA", "cHRM", "sRGB", "sBIT", "bKGD", "hIST", "pHYs", "tIME", "oFFs"};

template <typename Names>
bool isOneOf(const Names& names, std::string_view name) {
  return std::ranges::find(names, name) != std::end(names);
}

/// Calls `visit` with the name and all bytes of each chunk; the last one may be cut short.
template <typename Visitor>
void forEachChunk(std::string_view png, Visitor visit) {
  std::string_view rest = png.substr(std::min(png.size(), kSignatureBytes));
  while (rest.size() >= kChunkOverhead) {
    const std::string_view chunk = rest.substr(0, bigEndian32(rest, 0) + kChunkOverhead);
    visit(chunk.substr(4, 4), chunk);
    rest.remove_prefix(chunk.size());
  }
}

}  // namespace

std::optional<PngHeader> readPngHeader(std::string_view png) {
  constexpr std::size_t kDimensions = kSignatureBytes + 8;
  if (png.size() < kDimensions + 8 || png.substr(kSignatureBytes + 4, 4) != "IHDR") {
    return std::nullopt;
  }
  return PngHeader{bigEndian32(png, kDimensions), bigEndian32(png, kDimensions + 4)};
}

std::optional<std::string> pngWithoutExtras(std::string_view png) {
  bool hasExtras = false;
  std::size_t kept = kSignatureBytes;
  forEachChunk(png, [&](std::string_view name, std::string_view chunk) {
    const bool isPicture = isOneOf(kPictureChunks, name);
    kept += isPicture ? chunk.size() : 0;
    hasExtras = hasExtras || !(isPicture || isOneOf(kSmallChunks, name));
  });
  if (!hasExtras) {
    return std::nullopt;
  }
  std::string lean;
  lean.reserve(kept);
  lean.append(png.substr(0, kSignatureBytes));
  forEachChunk(png, [&](std::string_view name, std::string_view chunk) {
    if (isOneOf(kPictureChunks, name)) {
      lean.append(chunk);
    }
  });
  return lean;
}

}  // namespace kesu
