#include "drawing_cairo/GifDecoder.h"

#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "drawing_cairo/PixelBuffer.h"

namespace kesu {
namespace {

struct GifCloser {
  void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};
using GifHandle = std::unique_ptr<GifFileType, GifCloser>;

/// Which rows of an interlaced frame come one after the other.
struct Pass {
  int first;
  int step;
};
constexpr Pass kInterlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
constexpr Pass kStraight[] = {{0, 1}};

int readBytes(GifFileType* gif, GifByteType* target, int count) {
  auto& rest = *static_cast<std::string_view*>(gif->UserData);
  const std::size_t taken = std::min(rest.size(), static_cast<std::size_t>(std::max(count, 0)));
  std::memcpy(target, rest.data(), taken);
  rest.remove_prefix(taken);
  return static_cast<int>(taken);
}

/// Remembers the transparent index where the extension tells one.
bool readExtension(GifFileType& gif, int& transparent) {
  int code = 0;
  GifByteType* block = nullptr;
  if (DGifGetExtension(&gif, &code, &block) != GIF_OK) {
    return false;
  }
  while (block != nullptr) {
    GraphicsControlBlock control;
    if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK) {
      transparent = control.TransparentColor;
    }
    if (DGifGetExtensionNext(&gif, &block) != GIF_OK) {
      return false;
    }
  }
  return true;
}

/// Reads up to the pixels of the first frame; false when there is none.
bool seekFrame(GifFileType& gif, int& transparent) {
  GifRecordType type = UNDEFINED_RECORD_TYPE;
  while (DGifGetRecordType(&gif, &type) == GIF_OK) {
    if (type == IMAGE_DESC_RECORD_TYPE) {
      return DGifGetImageDesc(&gif) == GIF_OK;
    }
    if (type != EXTENSION_RECORD_TYPE || !readExtension(gif, transparent)) {
      return false;
    }
  }
  return false;
}

/// What each index looks like. Indices without a colour are transparent.
std::vector<std::uint32_t> paletteOf(const ColorMapObject& map, int transparent) {
  std::vector<std::uint32_t> palette(256);
  for (int index = 0; index < std::min(map.ColorCount, 256); ++index) {
    const GifColorType& color = map.Colors[index];
    palette[static_cast<std::size_t>(index)] =
        0xFF000000U | std::uint32_t{color.Red} << 16 | std::uint32_t{color.Green} << 8 | color.Blue;
  }
  if (transparent >= 0 && transparent < 256) {
    palette[static_cast<std::size_t>(transparent)] = 0;
  }
  return palette;
}

/// The first frame on its canvas.
class Frame {
 public:
  Frame(GifFileType& gif, std::vector<std::uint32_t> palette)
      : gif_(gif),
        palette_(std::move(palette)),
        line_(static_cast<std::size_t>(gif.Image.Width)),
        pixels_(makePixels(gif.SWidth, gif.SHeight)) {}

  bool read() {
    return gif_.Image.Interlace ? std::ranges::all_of(kInterlaced, [this](Pass pass) { return readPass(pass); })
                                : readPass(kStraight[0]);
  }
  Pixels takePixels() { return std::move(pixels_); }

 private:
  bool readPass(Pass pass) {
    for (int row = pass.first; row < gif_.Image.Height; row += pass.step) {
      if (DGifGetLine(&gif_, line_.data(), gif_.Image.Width) != GIF_OK) {
        return false;
      }
      if (gif_.Image.Top + row < gif_.SHeight) {
        place(gif_.Image.Top + row);
      }
    }
    return true;
  }

  void place(int y) {
    const auto left = static_cast<std::size_t>(std::min(gif_.Image.Left, gif_.SWidth));
    const auto canvasWidth = static_cast<std::size_t>(gif_.SWidth);
    const std::size_t visible = std::min(line_.size(), canvasWidth - left);
    const auto target = pixels_.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * canvasWidth + left);
    std::transform(line_.begin(), line_.begin() + static_cast<std::ptrdiff_t>(visible), target,
                   [this](GifPixelType index) { return palette_[index]; });
  }

  GifFileType& gif_;
  std::vector<std::uint32_t> palette_;
  std::vector<GifPixelType> line_;
  Pixels pixels_;
};

DecodedImage readFrame(GifFileType& gif, int transparent) {
  const ColorMapObject* colors = gif.Image.ColorMap != nullptr ? gif.Image.ColorMap : gif.SColorMap;
  if (colors == nullptr) {
    return notDecoded(ImageStatus::Damaged);
  }
  Frame frame(gif, paletteOf(*colors, transparent));
  if (!frame.read()) {
    return notDecoded(ImageStatus::Damaged);
  }
  return decodedImage(gif.SWidth, gif.SHeight, frame.takePixels());
}

}  // namespace

DecodedImage decodeGif(std::string_view bytes, const ImageLimits& limits) {
  std::string_view rest = bytes;
  const GifHandle gif(DGifOpen(&rest, readBytes, nullptr));
  if (!gif) {
    return notDecoded(ImageStatus::Damaged);
  }
  ImageStatus status = checkImageSize(gif->SWidth, gif->SHeight, limits);
  int transparent = NO_TRANSPARENT_COLOR;
  if (status == ImageStatus::Decoded) {
    // The frame has its own size; its pixels are unpacked even where they lie outside.
    status = seekFrame(*gif, transparent) ? checkImageSize(gif->Image.Width, gif->Image.Height, limits)
                                          : ImageStatus::Damaged;
  }
  return status == ImageStatus::Decoded ? readFrame(*gif, transparent) : notDecoded(status);
}

}  // namespace kesu
