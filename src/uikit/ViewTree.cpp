#include <kesu/ui/GestureRecognizer.h>
#include <kesu/ui/View.h>

#include <algorithm>
#include <utility>

namespace kesu {
namespace {

/// A point of the superview in the coordinates of a view, its transform undone. The scale is not 0.
Point throughTransform(const View& view, Point point) {
  const Transform& transform = view.transform();
  const Rect bounds = view.bounds();
  return {(point.x - view.center().x - transform.moveX) / transform.scaleX + bounds.width / 2.0,
          (point.y - view.center().y - transform.moveY) / transform.scaleY + bounds.height / 2.0};
}

}  // namespace

void View::addSubview(ViewPtr view) {
  insertSubview(std::move(view), subviews_.size());
}

void View::insertSubview(ViewPtr view, std::size_t index) {
  if (view == nullptr || view->isWindow_ || view->contains(*this)) {
    return;
  }
  view->removeFromSuperview();
  view->superview_ = this;
  const std::size_t place = std::min(index, subviews_.size());
  View& added = **subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(place), std::move(view));
  added.addDamage(added.pictureExtent());
}

void View::bringSubviewToFront(View& view) {
  const auto place = std::ranges::find(subviews_, &view, &ViewPtr::get);
  if (place == subviews_.end() || std::next(place) == subviews_.end()) {
    return;
  }
  std::rotate(place, std::next(place), subviews_.end());
  view.damageSuperview();
  view.noteChange();
}

void View::removeFromSuperview() {
  if (superview_ == nullptr) {
    return;
  }
  damageSuperview();
  noteChange();
  leaveSuperview();
}

/// This view may be destroyed by it.
void View::leaveSuperview() {
  std::vector<ViewPtr>& siblings = std::exchange(superview_, nullptr)->subviews_;
  const auto place = std::ranges::find(siblings, this, &ViewPtr::get);
  const ViewPtr self = std::move(*place);
  siblings.erase(place);
}

void View::removeAllSubviews() {
  while (!subviews_.empty()) {
    subviews_.back()->removeFromSuperview();
  }
}

bool View::contains(const View& other) const {
  const View* view = &other;
  while (view != nullptr && view != this) {
    view = view->superview_;
  }
  return view == this;
}

Window* View::window() {
  return superview_ != nullptr ? superview_->window() : nullptr;
}

std::vector<View*> View::drawingOrder() const {
  std::vector<View*> order;
  order.reserve(subviews_.size());
  std::ranges::transform(subviews_, std::back_inserter(order), &ViewPtr::get);
  std::stable_partition(order.begin(), order.end(), [](const View* view) { return !view->isFocused_; });
  return order;
}

Point View::toWindow(Point point) const {
  for (const View* view = this; view->superview_ != nullptr; view = view->superview_) {
    const Rect place = view->frame();
    point = {point.x + place.x, point.y + place.y};
  }
  return point;
}

Point View::fromWindow(Point point) const {
  const Point origin = toWindow({});
  return {point.x - origin.x, point.y - origin.y};
}

View* View::hitTest(Point point) {
  const bool isInside = bounds().contains(point);
  if (isHidden_ || model_.alpha <= 0.0 || !isUserInteractionEnabled_ || (clipsToBounds_ && !isInside)) {
    return nullptr;
  }
  const std::vector<View*> order = drawingOrder();
  for (auto view = order.rbegin(); view != order.rend(); ++view) {
    const Transform& transform = (*view)->transform();
    const bool hasPlace = transform.scaleX != 0.0 && transform.scaleY != 0.0;
    View* hit = hasPlace ? (*view)->hitTest(throughTransform(**view, point)) : nullptr;
    if (hit != nullptr) {
      return hit;
    }
  }
  return isInside ? this : nullptr;
}

void View::addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) {
  if (recognizer != nullptr) {
    recognizers_.push_back(std::move(recognizer));
  }
}

}  // namespace kesu
