#include "message_ui/GradientView.h"

#include "graphics/Canvas.h"

namespace kesu {

void GradientView::draw(Canvas& canvas) const {
  canvas.fillGradient(presentedBounds(), top_, bottom_);
}

}  // namespace kesu
