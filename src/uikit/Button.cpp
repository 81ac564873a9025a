#include <kesu/ui/Button.h>

#include <algorithm>
#include <utility>

#include "drawing/Canvas.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kTitleMargin = 8.0;  // Left and right of the title, in points.

}  // namespace

void Button::setTitle(std::string title) {
  ViewDrawing::set(*this, title_, std::move(title));
}

void Button::setFont(Font font) {
  ViewDrawing::set(*this, font_, std::move(font));
}

void Button::setTitleColor(const Color& color) {
  ViewDrawing::set(*this, titleColor_, color);
}

void Button::setBackgroundImage(ImagePtr image) {
  ViewDrawing::set(*this, backgroundImage_, std::move(image));
}

void Button::activate() {
  const Action action = action_;  // The action may give the button another one.
  if (action) {
    action(*this);
  }
}

void Button::draw(Canvas& canvas) const {
  const Rect box = ViewDrawing::presentedBounds(*this);
  if (backgroundImage_ != nullptr) {
    const Rect whole{0.0, 0.0, static_cast<double>(backgroundImage_->width()),
                     static_cast<double>(backgroundImage_->height())};
    canvas.save();
    canvas.clip(box, cornerRadius());
    canvas.drawImage(backgroundImage_, whole, box);
    canvas.restore();
  }
  const Rect room = box.inset(std::min(kTitleMargin, box.width / 8.0), 0.0);
  if (title_.empty() || room.isEmpty()) {
    return;
  }
  const TextLayout layout(title_, {font_, TextAlignment::Center, 1}, room.size());
  canvas.drawText(layout, {room.x, (room.height - layout.size().height) / 2.0}, titleColor_);
}

AccessibilityInfo Button::defaultAccessibility() const {
  return {AccessibilityInfo::Role::Button, title_, {}};
}

}  // namespace kesu
