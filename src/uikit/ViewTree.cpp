#include <kesu/ui/Window.h>

#include <algorithm>
#include <utility>

#include "uikit/ViewDrawing.h"

namespace kesu {

void View::addSubview(ViewPtr view) {
  if (view == nullptr || view->isWindow_ || view->contains(*this)) {
    return;
  }
  view->removeFromSuperview();
  view->superview_ = this;
  View& added = *subviews_.emplace_back(std::move(view));
  ViewDrawing::addDamage(added, ViewDrawing::pictureExtent(added));
}

void View::bringSubviewToFront(View& view) {
  const auto place = std::ranges::find(subviews_, &view, &ViewPtr::get);
  if (place == subviews_.end() || std::next(place) == subviews_.end()) {
    return;
  }
  std::rotate(place, std::next(place), subviews_.end());
  ViewDrawing::orderChanged(view);
}

void View::removeFromSuperview() {
  if (superview_ == nullptr) {
    return;
  }
  ViewDrawing::orderChanged(*this);
  std::vector<ViewPtr>& siblings = std::exchange(superview_, nullptr)->subviews_;
  const auto place = std::ranges::find(siblings, this, &ViewPtr::get);
  const ViewPtr self = std::move(*place);  // May be the last reference: destroyed once the siblings are in order.
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
  View* outermost = this;
  while (outermost->superview_ != nullptr) {
    outermost = outermost->superview_;
  }
  return outermost->isWindow_ ? static_cast<Window*>(outermost) : nullptr;
}

}  // namespace kesu
