#include "message_ui/ActionButton.h"

#include <kesu/ui/Window.h>

#include "drawing/Canvas.h"
#include "drawing/TextLayout.h"
#include "message_ui/MessageLayout.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kTitleScale = 0.8;  // A longer title ends in an ellipsis: smaller letters cannot be read from a sofa.
constexpr double kRingWidth = 2.5;
constexpr double kRingInset = 2.0;  // Inside the border, so that the card does not cut the ring off.
constexpr double kRingOpacity = 0.9;

}  // namespace

void ActionButton::setFace(ImagePtr face, const Color& ring) {
  face_ = std::move(face);
  ring_ = ring.withAlpha(kRingOpacity);
}

bool ActionButton::handleArrow(RemoteButton arrow) {
  const ViewPtr below = arrow == RemoteButton::Down ? wayDown_.lock() : nullptr;
  if (below == nullptr || window() == nullptr) {
    return false;
  }
  window()->setFocusedView(below.get());
  return true;
}

void ActionButton::draw(Canvas& canvas) const {
  const Rect box = ViewDrawing::presentedBounds(*this);
  canvas.save();
  canvas.clip(box, cornerRadius());
  canvas.drawImage(face_, {0.0, 0.0, 1.0, 1.0}, box);
  canvas.restore();
  if (isFocused()) {
    const Rect shown = uncutPart(frame(), kCardWidth, transform().scaleX);
    canvas.strokeInside(shown.inset(kRingInset, kRingInset), kRingWidth, ring_, kCardButtonRadius - kRingInset);
  }
  // The focused width, also without focus: the title must not change when the button grows.
  const double width = actionTitleWidth(frame(), kCardWidth, focusedScaleFactor());
  if (title().empty() || width <= 0.0) {
    return;
  }
  const TextLayout layout(title(), {font(), TextAlignment::Center, 1, kTitleScale}, {width, box.height});
  canvas.drawText(layout, {(box.width - width) / 2.0, (box.height - layout.size().height) / 2.0}, titleColor());
}

}  // namespace kesu
