#pragma once

#include <kesu/Export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace kesu {

/// An immutable picture in memory, which any thread may read. Pass it as ImagePtr, where null is "no picture".
class KESU_API Image {
 public:
  /// Moves the pixels in: rows from the top, each pixel 0xAARRGGBB, premultiplied. `pixels` contains exactly width *
  /// height of them.
  Image(int width, int height, std::vector<std::uint32_t> pixels);

  int width() const { return width_; }    ///< In pixels, at least 1.
  int height() const { return height_; }  ///< In pixels, at least 1.
  const std::uint32_t* pixels() const { return pixels_.data(); }
  std::size_t byteCount() const { return pixels_.size() * sizeof(std::uint32_t); }

  /// Whether every pixel is opaque; constant time.
  bool isOpaque() const { return isOpaque_; }

 private:
  int width_;
  int height_;
  bool isOpaque_;
  std::vector<std::uint32_t> pixels_;
};

using ImagePtr = std::shared_ptr<const Image>;

}  // namespace kesu
