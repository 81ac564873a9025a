#include "message_ui/GradientView.h"

#include "graphics/Canvas.h"
#include "uikit/ViewDrawing.h"

namespace kesu {

void GradientView::draw(Canvas& canvas) const {
  canvas.fillGradient(ViewDrawing::presentedBounds(*this), top_, bottom_);
}

}  // namespace kesu
