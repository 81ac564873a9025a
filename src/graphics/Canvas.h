#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>

#include <cstdint>
#include <memory>

#include "graphics/TextLayout.h"

namespace kesu {

/// Draws into pixels of the caller, in points. One thread at a time. Never throws and never draws outside the pixels;
/// shapes with NaN or infinite coordinates are left out.
class Canvas {
 public:
  /// `scale` pixels make a point; `stride` is the distance of rows in pixels. The pixels are premultiplied 0xAARRGGBB,
  /// are not cleared, and must outlive the canvas. The first of them is `left` and `top` pixels away from the origin: a
  /// part is drawn exactly as it is in the whole.
  Canvas(std::uint32_t* pixels, int width, int height, int stride, double scale, int left = 0, int top = 0);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // The state: origin, scale and clip.
  void save();
  void restore();
  void translate(double dx, double dy);
  void scale(double factorX, double factorY);
  void clip(const Rect& rect, double cornerRadius = 0.0);
  /// The bounds of the clip, in current coordinates.
  Rect clipBounds() const;

  // Everything up to endGroup() is drawn together with this opacity; save() and restore() lie within or around it.
  void beginGroup();
  void endGroup(double alpha);
  /// Ends the group clipped to a rounded rectangle: cheaper than clipping every shape in it.
  void endGroup(double alpha, const Rect& rect, double cornerRadius);

  void fill(const Rect& rect, const Color& color, double cornerRadius = 0.0);
  /// From `top` at the upper edge to `bottom` at the lower one.
  void fillGradient(const Rect& rect, const Color& top, const Color& bottom);
  /// A line of this width inside the edges.
  void strokeInside(const Rect& rect, double width, const Color& color, double cornerRadius = 0.0);
  /// The shadow of a rounded rectangle: only what lies outside of it matters, since the rectangle covers the rest.
  /// `blur` in points reaches about three times as far.
  void drawShadow(const Rect& rect, double cornerRadius, const Color& color, double opacity, double blur, Size offset);
  /// `source` in pixels of the image; stretched to `target`.
  void drawImage(const ImagePtr& image, const Rect& source, const Rect& target);
  void drawText(const TextLayout& layout, Point origin, const Color& color);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Releases the cached shadows and scaled pictures. Any thread.
void releaseDrawingCaches();

}  // namespace kesu
