#include <kesu/ui/Label.h>

#include <algorithm>
#include <utility>

#include "drawing/Canvas.h"
#include "uikit/ViewDrawing.h"

namespace kesu {

void Label::setText(std::string text) {
  ViewDrawing::set(*this, text_, std::move(text));
}

void Label::setFont(Font font) {
  ViewDrawing::set(*this, font_, std::move(font));
}

void Label::setTextColor(const Color& color) {
  ViewDrawing::set(*this, textColor_, color);
}

void Label::setAlignment(TextAlignment alignment) {
  ViewDrawing::set(*this, alignment_, alignment);
}

void Label::setNumberOfLines(int lines) {
  ViewDrawing::set(*this, numberOfLines_, std::max(0, lines));
}

void Label::setMinimumScaleFactor(double factor) {
  const double sensible = factor > 0.0 ? std::min(factor, 1.0) : 1.0;
  ViewDrawing::set(*this, minimumScaleFactor_, sensible);
}

void Label::draw(Canvas& canvas) const {
  const Rect box = ViewDrawing::presentedBounds(*this);
  if (text_.empty() || box.isEmpty()) {
    return;
  }
  // Not kept: the typesetter caches the last texts, and a presented size changes from frame to frame.
  const TextLayout layout(text_, {font_, alignment_, numberOfLines_, minimumScaleFactor_}, box.size());
  const double spare = box.height - layout.size().height;
  canvas.drawText(layout, {0.0, std::max(0.0, spare / 2.0)}, textColor_);
}

AccessibilityInfo Label::defaultAccessibility() const {
  return text_.empty() ? AccessibilityInfo{} : AccessibilityInfo{AccessibilityInfo::Role::Text, text_, {}};
}

}  // namespace kesu
