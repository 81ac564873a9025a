#include "uikit/ViewDrawing.h"

#include <algorithm>
#include <iterator>

namespace kesu {

Rect ViewDrawing::presentedBounds(const View& view) {
  const Size& size = presented(view).size;
  return {0.0, 0.0, size.width, size.height};
}

void ViewDrawing::present(View& view, const ViewGeometry& next) {
  ViewGeometry& presented = view.drawing_.presented;
  if (next == presented) {
    return;
  }
  if (isComposited(view) || view.isWindow_) {
    // The picture stays as it is when it only moves or fades.
    if (next.size != presented.size || next.shadow != presented.shadow) {
      repaint(view, [&] { presented = next; });
    }
    presented = next;
    noteChangeIn(view);
    return;
  }
  damageSuperview(view);
  presented = next;
  damageSuperview(view);
}

bool ViewDrawing::isComposited(const View& view) {
  return view.drawing_.isComposited || (view.superview_ != nullptr && view.superview_->isWindow_);
}

void ViewDrawing::setComposited(View& view, bool composited) {
  if (composited == view.drawing_.isComposited) {
    return;
  }
  if (view.superview_ != nullptr) {
    addDamageOfSubview(*view.superview_, drawnExtent(view));
  }
  view.drawing_.isComposited = composited;
  addDamage(view, pictureExtent(view));
}

std::vector<View*> ViewDrawing::drawingOrder(const View& view) {
  std::vector<View*> order;
  order.reserve(view.subviews_.size());
  std::ranges::transform(view.subviews_, std::back_inserter(order), &ViewPtr::get);
  std::stable_partition(order.begin(), order.end(), [](const View* one) { return !one->isFocused(); });
  return order;
}

void ViewDrawing::orderChanged(View& view) {
  damageSuperview(view);
  noteChangeIn(view);
}

Rect ViewDrawing::drawnExtent(const View& view) {
  return isDrawn(view) ? toSuperview(view, extent(view, true)) : Rect{};
}

/// The view itself with its shadow, in its own coordinates.
Rect ViewDrawing::bodyExtent(const View& view) {
  const Rect body = presentedBounds(view);
  const Shadow& shadow = presented(view).shadow;
  if (view.clipsToBounds() || shadow.opacity <= 0.0 || body.isEmpty()) {
    return body;
  }
  const Rect thrown = body.movedBy(shadow.offset.width, shadow.offset.height);
  return body.united(thrown.inset(-shadow.reach(), -shadow.reach()));
}

Rect ViewDrawing::extent(const View& view, bool withComposited) {
  Rect all = bodyExtent(view);
  if (view.clipsToBounds()) {
    return all;
  }
  for (const ViewPtr& inner : view.subviews_) {
    if (isDrawn(*inner) && (withComposited || !isComposited(*inner))) {
      all = all.united(toSuperview(*inner, extent(*inner, withComposited)));
    }
  }
  return all;
}

Rect ViewDrawing::toSuperview(const View& view, const Rect& own) {
  if (own.isEmpty()) {
    return {};
  }
  const ViewGeometry& geometry = presented(view);
  const Transform& transform = geometry.transform;
  const double middleX = geometry.center.x + transform.moveX;
  const double middleY = geometry.center.y + transform.moveY;
  // A scale below 0 exchanges the edges.
  const auto [left, right] = std::minmax({(own.x - geometry.size.width / 2.0) * transform.scaleX,
                                          (own.right() - geometry.size.width / 2.0) * transform.scaleX});
  const auto [top, bottom] = std::minmax({(own.y - geometry.size.height / 2.0) * transform.scaleY,
                                          (own.bottom() - geometry.size.height / 2.0) * transform.scaleY});
  return {middleX + left, middleY + top, right - left, bottom - top};
}

void ViewDrawing::addDamage(View& damaged, Rect own) {
  View* view = &damaged;
  while (!isComposited(*view) && !view->isWindow_) {
    // Not drawn: whatever shows up later is drawn anew, so its damage may be dropped.
    if (view->superview_ == nullptr || !isDrawn(*view)) {
      return;
    }
    own = toSuperview(*view, own);
    view = view->superview_;
    own = view->clipsToBounds() ? own.intersected(presentedBounds(*view)) : own;
  }
  view->drawing_.damage = view->drawing_.damage.united(own);
  if (isDrawn(*view)) {
    noteChangeIn(*view);
  }
}

void ViewDrawing::addDamageOfSubview(View& superview, const Rect& rect) {
  addDamage(superview, superview.clipsToBounds() ? rect.intersected(presentedBounds(superview)) : rect);
}

void ViewDrawing::damageSuperview(View& view) {
  if (view.superview_ != nullptr && !isComposited(view) && isDrawn(view)) {
    addDamageOfSubview(*view.superview_, toSuperview(view, pictureExtent(view)));
  }
}

void ViewDrawing::setChangeCallback(Window& window, std::function<void()> callback) {
  window.changeCallback_ = std::move(callback);
}

void ViewDrawing::noteChange(Window& window) {
  ++window.changeCount_;
  if (window.changeCallback_) {
    window.changeCallback_();
  }
}

void ViewDrawing::noteChangeIn(View& changed) {
  View* view = &changed;
  while (view->superview_ != nullptr) {
    view = view->superview_;
    if (!isDrawn(*view)) {
      return;
    }
  }
  if (view->isWindow_) {
    noteChange(static_cast<Window&>(*view));
  }
}

}  // namespace kesu
