#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/ui/Overlay.h>
#include <kesu/ui/View.h>

#include <algorithm>
#include <cmath>

namespace kesu {

/// Maps the coordinates of a view to pixels of the screen: scaled, then moved.
struct Placement {
  double scaleX = 1.0;
  double scaleY = 1.0;
  double x = 0.0;
  double y = 0.0;

  /// The placement of a view whose superview has this one.
  Placement of(const ViewGeometry& geometry) const {
    const Transform& transform = geometry.transform;
    const double left = geometry.center.x + transform.moveX - transform.scaleX * geometry.size.width / 2.0;
    const double top = geometry.center.y + transform.moveY - transform.scaleY * geometry.size.height / 2.0;
    return {scaleX * transform.scaleX, scaleY * transform.scaleY, x + scaleX * left, y + scaleY * top};
  }

  Rect onScreen(const Rect& own) const {
    const auto [left, right] = std::minmax({x + own.x * scaleX, x + own.right() * scaleX});
    const auto [top, bottom] = std::minmax({y + own.y * scaleY, y + own.bottom() * scaleY});
    return {left, top, right - left, bottom - top};
  }

  /// Maps a rectangle of the screen to the view's coordinates; the scales must not be 0.
  Rect fromScreen(const Rect& screen) const {
    return Placement{1.0 / scaleX, 1.0 / scaleY, -x / scaleX, -y / scaleY}.onScreen(screen);
  }
};

inline int pixelAt(double position) {
  constexpr double kFarthest = 100000000.0;  // Sums of a few of these still are integers.
  return static_cast<int>(std::clamp(position, -kFarthest, kFarthest));
}

/// All pixels that the rectangle touches.
inline PixelRect touchedPixels(const Rect& rect) {
  const int left = pixelAt(std::floor(rect.x));
  const int top = pixelAt(std::floor(rect.y));
  return {left, top, pixelAt(std::ceil(rect.right())) - left, pixelAt(std::ceil(rect.bottom())) - top};
}

inline PixelRect intersected(const PixelRect& a, const PixelRect& b) {
  const int left = std::max(a.x, b.x);
  const int top = std::max(a.y, b.y);
  const int width = std::min(a.x + a.width, b.x + b.width) - left;
  const int height = std::min(a.y + a.height, b.y + b.height) - top;
  return width > 0 && height > 0 ? PixelRect{left, top, width, height} : PixelRect{};
}

inline PixelRect united(const PixelRect& a, const PixelRect& b) {
  if (a.isEmpty() || b.isEmpty()) {
    return a.isEmpty() ? b : a;
  }
  const int left = std::min(a.x, b.x);
  const int top = std::min(a.y, b.y);
  return {left, top, std::max(a.x + a.width, b.x + b.width) - left, std::max(a.y + a.height, b.y + b.height) - top};
}

inline PixelRect movedBy(const PixelRect& rect, int dx, int dy) {
  return {rect.x + dx, rect.y + dy, rect.width, rect.height};
}

}  // namespace kesu
