#pragma once

#include <kesu/ui/View.h>

#include "drawing/Canvas.h"

namespace kesu {

/// Which of the views inside a view are drawn with it.
enum class PaintScope {
  OwnPicture,  ///< All but composited ones and what is in those.
  Everything   ///< All of them.
};

/// Draws a view as it is presented, in its own coordinates, without its transform and its opacity.
void paintView(Canvas& canvas, const View& view, PaintScope scope);

/// Whether a view's own picture is nothing but its background colour in a rectangle.
bool isPlainColor(const View& view);

}  // namespace kesu
