#include "message_ui/PicturePlaceholder.h"

#include "graphics/Canvas.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kFaceOpacity = 0.08;
constexpr double kOutlineOpacity = 0.16;
constexpr Size kOutline{112.0, 84.0};

Rect disc(Point center, double radius) {
  return {center.x - radius, center.y - radius, 2.0 * radius, 2.0 * radius};
}

}  // namespace

void PicturePlaceholder::draw(Canvas& canvas) const {
  const Rect box = ViewDrawing::presentedBounds(*this);
  canvas.fill(box, ink_.withAlpha(kFaceOpacity));
  if (box.height < 2.0 * kOutline.height) {
    return;
  }
  const Point middle = box.center();
  canvas.beginGroup();
  drawOutline(canvas,
              {middle.x - kOutline.width / 2.0, middle.y - kOutline.height / 2.0, kOutline.width, kOutline.height});
  canvas.endGroup(kOutlineOpacity);
}

// A frame, a sun, and two hills that the frame cuts off.
void PicturePlaceholder::drawOutline(Canvas& canvas, const Rect& outline) const {
  constexpr double kRadius = 12.0;
  canvas.save();
  canvas.translate(outline.x, outline.y);
  const Rect box{0.0, 0.0, outline.width, outline.height};
  canvas.strokeInside(box, 6.0, ink_, kRadius);
  canvas.clip(box, kRadius);
  canvas.fill(disc({34.0, 30.0}, 10.0), ink_, 10.0);
  canvas.fill(disc({32.0, 108.0}, 50.0), ink_, 50.0);
  canvas.fill(disc({84.0, 106.0}, 64.0), ink_, 64.0);
  canvas.restore();
}

}  // namespace kesu
