#pragma once

namespace kesu {

/// A place on the screen, in points: the screen is always 1920 x 1080 points, whatever its pixels; y grows downwards.
struct Point {
  double x = 0.0;
  double y = 0.0;

  friend bool operator==(const Point&, const Point&) = default;
};

/// Width and height in points.
struct Size {
  double width = 0.0;
  double height = 0.0;

  friend bool operator==(const Size&, const Size&) = default;
};

/// Distances from the four edges of a rectangle, in points.
struct EdgeInsets {
  double top = 0.0;
  double left = 0.0;
  double bottom = 0.0;
  double right = 0.0;

  friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
};

/// A rectangle in points. One without width or height is empty; widths and heights are never negative.
struct Rect {
  double x = 0.0;
  double y = 0.0;
  double width = 0.0;
  double height = 0.0;

  double right() const { return x + width; }
  double bottom() const { return y + height; }
  Point origin() const { return {x, y}; }
  Size size() const { return {width, height}; }
  Point center() const { return {x + width / 2.0, y + height / 2.0}; }
  bool isEmpty() const { return !(width > 0.0 && height > 0.0); }

  /// Whether the point lies inside; the right and the bottom edge are outside.
  bool contains(Point point) const { return point.x >= x && point.x < right() && point.y >= y && point.y < bottom(); }

  Rect movedBy(double dx, double dy) const { return {x + dx, y + dy, width, height}; }

  /// Inset by these distances on each side (grown by negative ones), clamped to 0.
  Rect inset(double dx, double dy) const {
    const double narrow = width - 2.0 * dx;
    const double low = height - 2.0 * dy;
    return {x + dx, y + dy, narrow > 0.0 ? narrow : 0.0, low > 0.0 ? low : 0.0};
  }

  /// The intersection of both; may be empty.
  Rect intersected(const Rect& other) const {
    const double left = x > other.x ? x : other.x;
    const double top = y > other.y ? y : other.y;
    const double rightmost = right() < other.right() ? right() : other.right();
    const double lowest = bottom() < other.bottom() ? bottom() : other.bottom();
    return rightmost > left && lowest > top ? Rect{left, top, rightmost - left, lowest - top} : Rect{};
  }

  /// The smallest rectangle that contains both; an empty one adds nothing.
  Rect united(const Rect& other) const {
    if (isEmpty()) {
      return other;
    }
    if (other.isEmpty()) {
      return *this;
    }
    const double left = x < other.x ? x : other.x;
    const double top = y < other.y ? y : other.y;
    const double rightmost = right() > other.right() ? right() : other.right();
    const double lowest = bottom() > other.bottom() ? bottom() : other.bottom();
    return {left, top, rightmost - left, lowest - top};
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

/// Scales a view about its centre, then moves it. The identity by default.
struct Transform {
  double scaleX = 1.0;
  double scaleY = 1.0;
  double moveX = 0.0;
  double moveY = 0.0;

  static Transform scale(double factor) { return {factor, factor, 0.0, 0.0}; }

  friend bool operator==(const Transform&, const Transform&) = default;
};

}  // namespace kesu
