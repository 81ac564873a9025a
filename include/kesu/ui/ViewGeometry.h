#pragma once

#include <kesu/graphics/Color.h>
#include <kesu/graphics/Geometry.h>

namespace kesu {

/// The shadow of a view; none while its opacity is 0 or the view clips to its bounds.
struct Shadow {
  Color color = Color::black();
  double opacity = 0.0;
  double radius = 3.0;  ///< Blur in points.
  Size offset{0.0, 0.0};

  /// How far the blur extends beyond the moved rectangle, in points.
  double reach() const { return 3.0 * radius + 1.0; }

  friend bool operator==(const Shadow&, const Shadow&) = default;
};

/// The properties of a view that can be animated.
struct ViewGeometry {
  Point center;
  Size size;
  Transform transform;
  double alpha = 1.0;
  Shadow shadow;

  friend bool operator==(const ViewGeometry&, const ViewGeometry&) = default;
};

}  // namespace kesu
