#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>

#include <cstdint>
#include <memory>

#include "drawing/TextLayout.h"

namespace kesu {

/// Pixels of the caller to draw on: premultiplied 0xAARRGGBB, not cleared.
struct CanvasPixels {
  std::uint32_t* first = nullptr;
  int width = 0;
  int height = 0;
  int stride = 0;      ///< Pixels from one row to the next.
  double scale = 1.0;  ///< Pixels per point.
  int left = 0;        ///< Of the first pixel, from the origin: a part is drawn exactly as it is in the whole.
  int top = 0;
};

/// Draws into pixels of the caller, in points. One thread at a time. Never throws and never draws outside the pixels;
/// shapes with NaN or infinite coordinates are left out.
class Canvas {
 public:
  Canvas() = default;
  virtual ~Canvas() = default;
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // The state: origin, scale and clip.
  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void translate(double dx, double dy) = 0;
  virtual void scale(double factorX, double factorY) = 0;
  virtual void clip(const Rect& rect, double cornerRadius = 0.0) = 0;
  /// The bounds of the clip, in current coordinates.
  virtual Rect clipBounds() const = 0;

  // Everything up to endGroup() is drawn together with this opacity; save() and restore() lie within or around it.
  virtual void beginGroup() = 0;
  virtual void endGroup(double alpha) = 0;
  /// Ends the group clipped to a rounded rectangle: cheaper than clipping every shape in it.
  virtual void endGroup(double alpha, const Rect& rect, double cornerRadius) = 0;

  virtual void fill(const Rect& rect, const Color& color, double cornerRadius = 0.0) = 0;
  /// From `top` at the upper edge to `bottom` at the lower one.
  virtual void fillGradient(const Rect& rect, const Color& top, const Color& bottom) = 0;
  /// A line of this width inside the edges.
  virtual void strokeInside(const Rect& rect, double width, const Color& color, double cornerRadius = 0.0) = 0;
  /// The shadow of a rounded rectangle: only what lies outside of it matters, since the rectangle covers the rest.
  /// `blur` in points reaches about three times as far.
  virtual void drawShadow(const Rect& rect, double cornerRadius, const Color& color, double opacity, double blur,
                          Size offset) = 0;
  /// `source` in pixels of the image; stretched to `target`.
  virtual void drawImage(const ImagePtr& image, const Rect& source, const Rect& target) = 0;
  virtual void drawText(const TextLayout& layout, Point origin, const Color& color) = 0;
};

/// Returns a canvas on these pixels, which must outlive it. Null without a drawing module. Any thread.
std::unique_ptr<Canvas> makeCanvas(const CanvasPixels& target);

/// Releases the cached shadows and scaled pictures. Any thread.
void releaseDrawingCaches();

}  // namespace kesu
