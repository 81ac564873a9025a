#include <kesu/ui/Controls.h>

#include <algorithm>
#include <utility>

#include "graphics/Canvas.h"

namespace kesu {

void Label::setText(std::string text) {
  if (text != text_) {
    text_ = std::move(text);
    setNeedsDisplay();
  }
}

void Label::setFont(Font font) {
  if (font != font_) {
    font_ = std::move(font);
    setNeedsDisplay();
  }
}

void Label::setTextColor(const Color& color) {
  if (color != textColor_) {
    textColor_ = color;
    setNeedsDisplay();
  }
}

void Label::setAlignment(TextAlignment alignment) {
  if (alignment != alignment_) {
    alignment_ = alignment;
    setNeedsDisplay();
  }
}

void Label::setNumberOfLines(int lines) {
  if (std::max(0, lines) != numberOfLines_) {
    numberOfLines_ = std::max(0, lines);
    setNeedsDisplay();
  }
}

void Label::setMinimumScaleFactor(double factor) {
  const double sensible = factor > 0.0 ? std::min(factor, 1.0) : 1.0;
  if (sensible != minimumScaleFactor_) {
    minimumScaleFactor_ = sensible;
    setNeedsDisplay();
  }
}

void Label::draw(Canvas& canvas) const {
  const Rect box = presentedBounds();
  if (text_.empty() || box.isEmpty()) {
    return;
  }
  const TextLayout layout(text_, {font_, alignment_, numberOfLines_, minimumScaleFactor_}, box.size());
  const double spare = box.height - layout.size().height;
  canvas.drawText(layout, {0.0, std::max(0.0, spare / 2.0)}, textColor_);
}

AccessibilityInfo Label::defaultAccessibility() const {
  return text_.empty() ? AccessibilityInfo{} : AccessibilityInfo{AccessibilityInfo::Role::Text, text_, {}};
}

}  // namespace kesu
