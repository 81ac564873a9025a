#include <kesu/ui/View.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "uikit/Animator.h"

namespace kesu {
namespace {

constexpr double kLargest = 1e9;  // Far beyond every screen, and squares of it still have a place in a double.

double finite(double number) {
  return std::isfinite(number) ? std::clamp(number, -kLargest, kLargest) : 0.0;
}

double positive(double number) {
  return std::max(0.0, finite(number));
}

Color finite(const Color& color) {
  const auto part = [](double value) { return std::clamp(finite(value), 0.0, 1.0); };
  return {part(color.red), part(color.green), part(color.blue), part(color.alpha)};
}

Shadow finite(const Shadow& shadow) {
  return {finite(shadow.color), std::clamp(finite(shadow.opacity), 0.0, 1.0), positive(shadow.radius),
          Size{finite(shadow.offset.width), finite(shadow.offset.height)}};
}

ViewGeometry withFrame(ViewGeometry geometry, const Rect& frame) {
  geometry.size = {positive(frame.width), positive(frame.height)};
  geometry.center = {finite(frame.x) + geometry.size.width / 2.0, finite(frame.y) + geometry.size.height / 2.0};
  return geometry;
}

}  // namespace

View::View(const Rect& frame) : model_(withFrame({}, frame)), presented_(model_) {}

View::~View() {
  for (const ViewPtr& view : subviews_) {
    view->superview_ = nullptr;
  }
  if (isAnimated_) {
    Animator::shared().viewWentAway(*this);
  }
}

Rect View::frame() const {
  const Size& size = model_.size;
  return {model_.center.x - size.width / 2.0, model_.center.y - size.height / 2.0, size.width, size.height};
}

void View::setFrame(const Rect& frame) {
  moveModel(withFrame(model_, frame));
}

void View::setCenter(Point center) {
  ViewGeometry next = model_;
  next.center = {finite(center.x), finite(center.y)};
  moveModel(next);
}

void View::setTransform(const Transform& transform) {
  ViewGeometry next = model_;
  next.transform = {finite(transform.scaleX), finite(transform.scaleY), finite(transform.moveX),
                    finite(transform.moveY)};
  moveModel(next);
}

void View::setAlpha(double alpha) {
  ViewGeometry next = model_;
  next.alpha = std::clamp(finite(alpha), 0.0, 1.0);
  moveModel(next);
}

void View::setShadow(const Shadow& shadow) {
  ViewGeometry next = model_;
  next.shadow = finite(shadow);
  moveModel(next);
}

void View::moveModel(const ViewGeometry& next) {
  if (next == model_) {
    return;
  }
  const ViewGeometry before = std::exchange(model_, next);
  Animator::shared().viewMoved(*this, before, next);
  if (before.size != next.size) {
    sizeDidChange();
  }
}

void View::present(const ViewGeometry& next) {
  if (next == presented_) {
    return;
  }
  if (isComposited() || isWindow_) {
    if (next.size != presented_.size || next.shadow != presented_.shadow) {
      repaint([&] { presented_ = next; });
    }
    presented_ = next;
    noteChange();
    return;
  }
  damageSuperview();
  presented_ = next;
  damageSuperview();
}

/// Has everything drawn again that the view touches before and after the change.
template <typename Change>
void View::repaint(Change change) {
  const Rect before = pictureExtent();
  change();
  addDamage(before.united(pictureExtent()));
}

void View::setHidden(bool hidden) {
  if (hidden == isHidden_) {
    return;
  }
  damageSuperview();
  isHidden_ = hidden;
  damageSuperview();
  noteChange();
}

void View::setClipsToBounds(bool clips) {
  if (clips != clipsToBounds_) {
    repaint([&] { clipsToBounds_ = clips; });
  }
}

void View::setBackgroundColor(const Color& color) {
  if (finite(color) != backgroundColor_) {
    backgroundColor_ = finite(color);
    setNeedsDisplay();
  }
}

void View::setCornerRadius(double radius) {
  if (positive(radius) != cornerRadius_) {
    repaint([&] { cornerRadius_ = positive(radius); });
  }
}

void View::setBorder(double width, const Color& color) {
  if (positive(width) != borderWidth_ || finite(color) != borderColor_) {
    borderWidth_ = positive(width);
    borderColor_ = finite(color);
    setNeedsDisplay();
  }
}

void View::setModal(bool modal) {
  isModal_ = modal;
}

void View::setComposited(bool composited) {
  if (composited == isComposited_) {
    return;
  }
  if (superview_ != nullptr) {
    superview_->addDamageOfSubview(drawnExtent());
  }
  isComposited_ = composited;
  addDamage(pictureExtent());
}

void View::setFocused(bool focused) {
  if (focused == isFocused_) {
    return;
  }
  isFocused_ = focused;
  damageSuperview();  // It is drawn before or after its siblings now.
  noteChange();
}

AccessibilityInfo View::accessibility() const {
  if (!accessibility_) {
    return defaultAccessibility();
  }
  AccessibilityInfo info = *accessibility_;
  if (info.label.empty()) {
    info.label = defaultAccessibility().label;
  }
  return info;
}

void View::setAccessibility(AccessibilityInfo info) {
  accessibility_ = std::move(info);
}

}  // namespace kesu
