#pragma once

#include <kesu/graphics/Geometry.h>
#include <kesu/ui/View.h>

#include <algorithm>

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

}  // namespace kesu
