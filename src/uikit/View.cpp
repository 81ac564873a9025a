#include <kesu/ui/View.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "uikit/Animator.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kLargest = 1e9;  // Far beyond every screen; its square still is exact enough in a double.

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

View::View() = default;

View::View(const Rect& frame) : model_(withFrame({}, frame)), drawing_{model_, {}} {}

View::~View() {
  for (const ViewPtr& view : subviews_) {
    view->superview_ = nullptr;  // Others may still own it.
  }
  if (drawing_.isAnimated) {
    Animator::shared().viewDestroyed(*this);
  }
}

Rect View::frame() const {
  const Size& size = model_.size;
  return {model_.center.x - size.width / 2.0, model_.center.y - size.height / 2.0, size.width, size.height};
}

void View::setFrame(const Rect& frame) {
  setGeometry(withFrame(model_, frame));
}

void View::setCenter(Point center) {
  ViewGeometry next = model_;
  next.center = {finite(center.x), finite(center.y)};
  setGeometry(next);
}

void View::setTransform(const Transform& transform) {
  ViewGeometry next = model_;
  next.transform = {finite(transform.scaleX), finite(transform.scaleY), finite(transform.moveX),
                    finite(transform.moveY)};
  setGeometry(next);
}

void View::setAlpha(double alpha) {
  ViewGeometry next = model_;
  next.alpha = std::clamp(finite(alpha), 0.0, 1.0);
  setGeometry(next);
}

void View::setShadow(const Shadow& shadow) {
  ViewGeometry next = model_;
  next.shadow = finite(shadow);
  setGeometry(next);
}

void View::setGeometry(const ViewGeometry& next) {
  if (next == model_) {
    return;
  }
  const ViewGeometry before = std::exchange(model_, next);
  Animator::shared().viewMoved(*this, before, next);  // Presents it, at once or gradually.
  if (before.size != next.size) {
    sizeDidChange();
  }
}

void View::setHidden(bool hidden) {
  if (hidden == look_.isHidden) {
    return;
  }
  // Once before and once after: only one of them finds the view drawn.
  ViewDrawing::damageSuperview(*this);
  look_.isHidden = hidden;
  ViewDrawing::orderChanged(*this);
}

void View::setClipsToBounds(bool clips) {
  if (clips != look_.clipsToBounds) {
    ViewDrawing::repaint(*this, [&] { look_.clipsToBounds = clips; });
  }
}

void View::setBackgroundColor(const Color& color) {
  ViewDrawing::set(*this, look_.background, finite(color));
}

void View::setCornerRadius(double radius) {
  if (positive(radius) != look_.cornerRadius) {
    ViewDrawing::repaint(*this, [&] { look_.cornerRadius = positive(radius); });
  }
}

void View::setBorder(double width, const Color& color) {
  ViewDrawing::set(*this, look_.borderWidth, positive(width));
  ViewDrawing::set(*this, look_.border, finite(color));
}

}  // namespace kesu
