#pragma once

#include <kesu/graphics/Frame.h>
#include <kesu/graphics/Geometry.h>

#include <algorithm>
#include <cmath>

namespace kesu {

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
