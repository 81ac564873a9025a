#include <kesu/ui/Containers.h>
#include <kesu/ui/View.h>

#include <algorithm>
#include <utility>

namespace kesu {

void View::setNeedsDisplay() {
  addDamage(bodyExtent());
}

Rect View::takeDamage() {
  return std::exchange(damage_, Rect{});
}

Rect View::drawnExtent() const {
  return isDrawn() ? toSuperview(extent(true)) : Rect{};
}

Rect View::pictureExtent() const {
  return extent(false);
}

/// The view itself with its shadow, in its own coordinates.
Rect View::bodyExtent() const {
  const Rect body = presentedBounds();
  const Shadow& shadow = presented_.shadow;
  if (clipsToBounds_ || shadow.opacity <= 0.0 || body.isEmpty()) {
    return body;
  }
  const Rect thrown = body.movedBy(shadow.offset.width, shadow.offset.height);
  return body.united(thrown.inset(-shadow.reach(), -shadow.reach()));
}

Rect View::extent(bool withComposited) const {
  Rect all = bodyExtent();
  if (clipsToBounds_) {
    return all;
  }
  for (const ViewPtr& view : subviews_) {
    if (view->isDrawn() && (withComposited || !view->isComposited())) {
      all = all.united(view->toSuperview(view->extent(withComposited)));
    }
  }
  return all;
}

Rect View::toSuperview(const Rect& own) const {
  if (own.isEmpty()) {
    return {};
  }
  const Transform& transform = presented_.transform;
  const double middleX = presented_.center.x + transform.moveX;
  const double middleY = presented_.center.y + transform.moveY;
  const auto [left, right] = std::minmax({(own.x - presented_.size.width / 2.0) * transform.scaleX,
                                          (own.right() - presented_.size.width / 2.0) * transform.scaleX});
  const auto [top, bottom] = std::minmax({(own.y - presented_.size.height / 2.0) * transform.scaleY,
                                          (own.bottom() - presented_.size.height / 2.0) * transform.scaleY});
  return {middleX + left, middleY + top, right - left, bottom - top};
}

/// A rectangle of this view's own coordinates is to be drawn again. Ends in the picture that the view is drawn into, or
/// nowhere when something around it is not drawn: whatever shows up later is drawn anew.
void View::addDamage(Rect own) {
  View* view = this;
  while (!view->isComposited() && !view->isWindow_) {
    if (view->superview_ == nullptr || !view->isDrawn()) {
      return;
    }
    own = view->toSuperview(own);
    view = view->superview_;
    own = view->clipsToBounds_ ? own.intersected(view->presentedBounds()) : own;
  }
  view->damage_ = view->damage_.united(own);
  if (view->isDrawn()) {
    view->noteChange();
  }
}

/// As addDamage(), for what a subview touches in this view's coordinates.
void View::addDamageOfSubview(const Rect& rect) {
  addDamage(clipsToBounds_ ? rect.intersected(presentedBounds()) : rect);
}

/// Has the place drawn again where the view is now, in the picture around it. A composited view is in none.
void View::damageSuperview() {
  if (superview_ != nullptr && !isComposited() && isDrawn()) {
    superview_->addDamageOfSubview(toSuperview(pictureExtent()));
  }
}

/// The next frame of the window differs, unless something around the view is not drawn.
void View::noteChange() {
  View* view = this;
  while (view->superview_ != nullptr) {
    view = view->superview_;
    if (!view->isDrawn()) {
      return;
    }
  }
  if (view->isWindow_) {
    static_cast<Window*>(view)->didChange();
  }
}

}  // namespace kesu
