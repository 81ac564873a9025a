#include "drawing_cairo/ExifOrientation.h"

#include <algorithm>
#include <utility>

#include "drawing_cairo/BigEndian.h"

namespace kesu {
namespace {

constexpr std::uint32_t kOrientationTag = 0x0112;
constexpr std::uint32_t kShortType = 3;
constexpr std::size_t kEntryBytes = 12;

/// A TIFF block: numbers in either byte order, read as 0 beyond its end.
class Tiff {
 public:
  explicit Tiff(std::string_view bytes) : bytes_(bytes), isLittleEndian_(bytes.starts_with("II")) {}

  std::uint32_t number16(std::size_t offset) const {
    if (offset > bytes_.size() || bytes_.size() - offset < 2) {
      return 0;
    }
    const std::uint32_t value = bigEndian16(bytes_, offset);
    return isLittleEndian_ ? (value >> 8 | (value & 0xFF) << 8) : value;
  }
  std::uint32_t number32(std::size_t offset) const {
    const std::uint32_t first = number16(offset);
    const std::uint32_t second = number16(offset + 2);
    return isLittleEndian_ ? second << 16 | first : first << 16 | second;
  }

 private:
  std::string_view bytes_;
  bool isLittleEndian_;
};

Orientation orientationOf(std::uint32_t number) {
  return number >= 1 && number <= 8 ? static_cast<Orientation>(number) : Orientation::Upright;
}

bool isTransposing(Orientation orientation) {
  return orientation >= Orientation::Transposed;
}

/// Whether the rows (after any transposition) have to be reversed, and whether their order has to.
struct Flips {
  bool rows;
  bool order;
};

Flips flipsOf(Orientation orientation) {
  switch (orientation) {
    case Orientation::Upright:
    case Orientation::Transposed:
      return {false, false};
    case Orientation::Mirrored:
    case Orientation::NeedsClockwiseTurn:
      return {true, false};
    case Orientation::UpsideDown:
    case Orientation::Transversed:
      return {true, true};
    case Orientation::MirroredUpsideDown:
    case Orientation::NeedsAnticlockwiseTurn:
      return {false, true};
  }
  return {false, false};
}

/// Follows each cycle of the permutation once: a second copy of a large picture would not fit the memory that decoding
/// may use. Placed pixels are marked in their opacity, which is known.
void transpose(Pixels& pixels, std::size_t width, std::size_t height) {
  constexpr std::uint32_t kUnplaced = 0x80000000;
  for (std::size_t start = 0; start < pixels.size(); ++start) {
    std::uint32_t carried = pixels[start];
    for (std::size_t at = start; (pixels[start] & kUnplaced) != 0;) {
      at = at % width * height + at / width;
      std::swap(carried, pixels[at]);
      pixels[at] &= ~kUnplaced;
    }
  }
  std::ranges::for_each(pixels, [](std::uint32_t& pixel) { pixel |= kUnplaced; });
}

}  // namespace

Orientation exifOrientation(std::string_view segment) {
  constexpr std::string_view kName{"Exif\0\0", 6};
  if (!segment.starts_with(kName)) {
    return Orientation::Upright;
  }
  const Tiff tiff(segment.substr(kName.size()));
  const std::size_t directory = tiff.number32(4);
  const std::size_t entries = tiff.number16(directory);
  for (std::size_t entry = directory + 2; entry < directory + 2 + entries * kEntryBytes; entry += kEntryBytes) {
    if (tiff.number16(entry) == kOrientationTag) {
      return tiff.number16(entry + 2) == kShortType ? orientationOf(tiff.number16(entry + 8)) : Orientation::Upright;
    }
  }
  return Orientation::Upright;
}

void turnUpright(Pixels& pixels, int& width, int& height, Orientation orientation) {
  if (isTransposing(orientation)) {
    transpose(pixels, static_cast<std::size_t>(width), static_cast<std::size_t>(height));
    std::swap(width, height);
  }
  const auto [rows, order] = flipsOf(orientation);
  if (rows && order) {
    std::ranges::reverse(pixels);
  } else if (rows) {
    for (auto row = pixels.begin(); row != pixels.end(); row += width) {
      std::reverse(row, row + width);
    }
  } else if (order) {
    for (int y = 0; y < height / 2; ++y) {
      const auto upper = pixels.begin() + static_cast<std::ptrdiff_t>(y) * width;
      std::swap_ranges(upper, upper + width, pixels.end() - static_cast<std::ptrdiff_t>(y + 1) * width);
    }
  }
}

}  // namespace kesu
