#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Font.h>
#include <kesu/graphics/Geometry.h>
#include <kesu/graphics/Image.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include "graphics/TextLayout.h"

namespace kesu {

/// Draws into pixels that somebody else owns, in points. One thread at a time. Never throws and never draws outside of
/// the pixels; what has no finite place is left out.
class Canvas {
 public:
  /// `scale` pixels make a point; `stride` pixels lead from one row to the next. The pixels are premultiplied
  /// 0xAARRGGBB and are drawn over, not cleared. The first of them is `left` and `top` pixels away from the origin: a
  /// part is drawn exactly as it is in the whole.
  Canvas(std::uint32_t* pixels, int width, int height, int stride, double scale, int left = 0, int top = 0);
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  // The state: where the origin is, and what is clipped away.
  void save();
  void restore();
  void translate(double dx, double dy);
  void scale(double factorX, double factorY);
  void clip(const Rect& rect, double cornerRadius = 0.0);
  /// What is not clipped away, in present coordinates.
  Rect clipBounds() const;

  // Everything up to endGroup() is drawn together with this opacity; save() and restore() lie within or around it.
  void beginGroup();
  void endGroup(double alpha);
  /// Of the group, only what lies in the rounded rectangle: cheaper than clipping every single drawing in it.
  void endGroup(double alpha, const Rect& rect, double cornerRadius);

  void clear(const Rect& rect);  ///< Makes it transparent.
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
  /// The text in the box, its first line at the top; lines as `style` says.
  void drawText(std::string_view text, const TextStyle& style, const Rect& box, const Color& color);
  void drawText(const TextLayout& layout, Point origin, const Color& color);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

/// Gives back blurred shadows and scaled pictures that are kept to be drawn again. Any thread.
void releaseDrawingCaches();

}  // namespace kesu
