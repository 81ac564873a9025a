#pragma once

#include <kesu/graphics/Color.h>

#include <cstdint>

namespace kesu {

/// A rectangle of pixels.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }
  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// One rectangle of a frame to be composed, either of one colour or with pixels.
struct FrameLayer {
  /// Identifies a texture across frames, as long as the layer is in every frame and its pixels keep their size. After a
  /// frame without it the layer is new and entirely damaged.
  std::uint64_t id = 0;
  double x = 0.0;  ///< Position on the screen in pixels; may lie outside.
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;
  double alpha = 1.0;                     ///< Multiplies everything in the layer.
  Color color;                            ///< For a layer without pixels.
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied; null: one colour. See Overlay::layers().
  int pixelWidth = 0;
  int pixelHeight = 0;
  int stride = 0;    ///< Pixels from one row to the next.
  PixelRect damage;  ///< What changed since the last frame of layers, in pixels of the layer.
};

/// A whole screen of pixels, transparent where the library shows nothing.
struct FlatFrame {
  const std::uint32_t* pixels = nullptr;  ///< 0xAARRGGBB, premultiplied; null: out of memory.
  int width = 0;
  int height = 0;
  int stride = 0;    ///< Pixels from one row to the next.
  PixelRect damage;  ///< What changed since the last flattened frame; may be empty.
};

}  // namespace kesu
