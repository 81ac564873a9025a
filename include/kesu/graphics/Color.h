#pragma once

namespace kesu {

/// A colour: red, green, blue and opacity from 0 to 1, not premultiplied.
struct Color {
  double red = 0.0;
  double green = 0.0;
  double blue = 0.0;
  double alpha = 1.0;

  static constexpr Color white() { return {1.0, 1.0, 1.0, 1.0}; }
  static constexpr Color black() { return {0.0, 0.0, 0.0, 1.0}; }
  static constexpr Color blueColor() { return {0.0, 0.0, 1.0, 1.0}; }
  static constexpr Color redColor() { return {1.0, 0.0, 0.0, 1.0}; }

  /// Draws nothing.
  static constexpr Color clear() { return {0.0, 0.0, 0.0, 0.0}; }

  constexpr Color withAlpha(double opacity) const { return {red, green, blue, opacity}; }

  friend constexpr bool operator==(const Color&, const Color&) = default;
};

}  // namespace kesu
