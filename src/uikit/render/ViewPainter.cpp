#include "uikit/render/ViewPainter.h"

#include <kesu/ui/Window.h>

#include <algorithm>
#include <typeinfo>

#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

// Only these classes are known to draw nothing.
bool isBareView(const View& view) {
  return typeid(view) == typeid(View) || typeid(view) == typeid(Window);
}

void paintContent(Canvas& canvas, const View& view) {
  if (isBareView(view)) {
    return;
  }
  canvas.save();
  canvas.clip(ViewDrawing::presentedBounds(view));
  if (view.cornerRadius() > 0.0) {  // As a group: clipping each shape on its own would add up at the soft edges.
    canvas.beginGroup();
    ViewDrawing::draw(view, canvas);
    canvas.endGroup(1.0, ViewDrawing::presentedBounds(view), view.cornerRadius());
  } else {
    ViewDrawing::draw(view, canvas);
  }
  canvas.restore();
}

void paintInSuperview(Canvas& canvas, const View& view, PaintScope scope) {
  const ViewGeometry& geometry = ViewDrawing::presented(view);
  const Transform& transform = geometry.transform;
  const Rect extent = ViewDrawing::drawnExtent(view);
  if (!ViewDrawing::isDrawn(view) || transform.scaleX == 0.0 || transform.scaleY == 0.0 ||
      extent.intersected(canvas.clipBounds()).isEmpty()) {
    return;
  }
  canvas.save();
  if (geometry.alpha < 1.0) {
    canvas.clip(extent.inset(-1.0, -1.0));  // A group allocates pixels for the whole clip.
    canvas.beginGroup();
  }
  canvas.save();
  canvas.translate(geometry.center.x + transform.moveX, geometry.center.y + transform.moveY);
  canvas.scale(transform.scaleX, transform.scaleY);
  canvas.translate(-geometry.size.width / 2.0, -geometry.size.height / 2.0);
  paintView(canvas, view, scope);
  canvas.restore();
  if (geometry.alpha < 1.0) {
    canvas.endGroup(geometry.alpha);
  }
  canvas.restore();
}

void paintInside(Canvas& canvas, const View& view, PaintScope scope) {
  paintContent(canvas, view);
  for (const View* inner : ViewDrawing::drawingOrder(view)) {
    if (scope == PaintScope::Everything || !ViewDrawing::isComposited(*inner)) {
      paintInSuperview(canvas, *inner, scope);
    }
  }
}

void paintClipped(Canvas& canvas, const View& view, PaintScope scope) {
  const Rect bounds = ViewDrawing::presentedBounds(view);
  canvas.save();
  canvas.clip(bounds);
  if (view.cornerRadius() > 0.0) {
    canvas.beginGroup();
    canvas.fill(bounds, view.backgroundColor());
    paintInside(canvas, view, scope);
    canvas.endGroup(1.0, bounds, view.cornerRadius());
  } else {
    canvas.fill(bounds, view.backgroundColor());
    paintInside(canvas, view, scope);
  }
  canvas.restore();
}

}  // namespace

void paintView(Canvas& canvas, const View& view, PaintScope scope) {
  const Rect bounds = ViewDrawing::presentedBounds(view);
  if (view.clipsToBounds()) {
    paintClipped(canvas, view, scope);
  } else {
    const Shadow& shadow = ViewDrawing::presented(view).shadow;
    if (shadow.opacity > 0.0) {
      canvas.drawShadow(bounds, view.cornerRadius(), shadow.color, shadow.opacity, shadow.radius, shadow.offset);
    }
    canvas.fill(bounds, view.backgroundColor(), view.cornerRadius());
    paintInside(canvas, view, scope);
  }
  canvas.strokeInside(bounds, view.borderWidth(), view.borderColor(), view.cornerRadius());
}

bool isPlainColor(const View& view) {
  const bool hasBorder = view.borderWidth() > 0.0 && view.borderColor().alpha > 0.0;
  const bool hasShadow = ViewDrawing::presented(view).shadow.opacity > 0.0 && !view.clipsToBounds();
  return isBareView(view) && !hasBorder && !hasShadow && view.cornerRadius() <= 0.0 &&
         std::ranges::none_of(view.subviews(), [](const ViewPtr& inner) {
           return !ViewDrawing::isComposited(*inner) && ViewDrawing::isDrawn(*inner);
         });
}

}  // namespace kesu
