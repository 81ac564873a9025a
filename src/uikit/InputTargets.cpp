#include "uikit/InputTargets.h"

#include <algorithm>
#include <iterator>

#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

/// Whether a view itself, without those around it, can be seen and used.
bool takesPart(const View& view) {
  return !view.isHidden() && view.alpha() > 0.0 && view.isUserInteractionEnabled();
}

bool takesPartWithAncestors(const View& view) {
  const View* one = &view;
  while (one != nullptr && takesPart(*one)) {
    one = one->superview();
  }
  return one == nullptr;
}

bool isFocusable(const View& view) {
  return view.canBecomeFocused() && !view.bounds().isEmpty();
}

/// A point of the superview in the coordinates of a view, its transform undone. The scale is not 0.
Point throughTransform(const View& view, Point point) {
  const Transform& transform = view.transform();
  const Rect bounds = view.bounds();
  return {(point.x - view.center().x - transform.moveX) / transform.scaleX + bounds.width / 2.0,
          (point.y - view.center().y - transform.moveY) / transform.scaleY + bounds.height / 2.0};
}

/// Null for a window as well, which no shared_ptr owns.
ViewPtr superviewOf(const View& view) {
  return view.superview() != nullptr ? view.superview()->weak_from_this().lock() : nullptr;
}

void findModal(View& view, View*& found) {
  if (view.isHidden()) {
    return;
  }
  found = view.isModal() ? &view : found;
  for (View* subview : ViewDrawing::drawingOrder(view)) {
    findModal(*subview, found);
  }
}

void collectFocusable(View& view, std::vector<ViewPtr>& found) {
  if (!takesPart(view)) {
    return;
  }
  if (isFocusable(view)) {
    found.push_back(view.shared_from_this());
  }
  for (const ViewPtr& subview : view.subviews()) {
    collectFocusable(*subview, found);
  }
}

/// The last recogniser of a view that was added and fits, or null.
template <typename Fits>
RecognizerPtr recognizerOf(const View& view, Fits fits) {
  const auto& all = GestureRecognizer::of(view);
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](const RecognizerPtr& one) { return fits(*one); });
  return found != all.rend() ? *found : nullptr;
}

template <typename Fits>
RecognizerPtr frontmostRecognizer(const View& view, Fits fits) {
  if (!takesPart(view)) {
    return nullptr;
  }
  const std::vector<View*> order = ViewDrawing::drawingOrder(view);
  for (auto subview = order.rbegin(); subview != order.rend(); ++subview) {
    if (RecognizerPtr found = frontmostRecognizer(**subview, fits)) {
      return found;
    }
  }
  return recognizerOf(view, fits);
}

/// From the focused view outwards to the modal one, else the frontmost.
template <typename Fits>
RecognizerPtr findRecognizer(const View& modal, const View* focused, Fits fits) {
  if (!takesPartWithAncestors(modal)) {
    return nullptr;
  }
  for (const View* view = focused; view != nullptr && modal.contains(*view); view = view->superview()) {
    if (RecognizerPtr found = recognizerOf(*view, fits)) {
      return found;
    }
  }
  return frontmostRecognizer(modal, fits);
}

}  // namespace

View* frontmostModal(const Window& window) {
  View* found = nullptr;
  for (View* view : window.isHidden() ? std::vector<View*>() : ViewDrawing::drawingOrder(window)) {
    findModal(*view, found);
  }
  return found;
}

std::vector<ViewPtr> focusableIn(View& modal) {
  std::vector<ViewPtr> found;
  if (modal.superview() != nullptr && takesPartWithAncestors(modal)) {
    collectFocusable(modal, found);
  }
  return found;
}

Rect placeInWindow(const View& view) {
  Rect place = view.bounds();
  for (const View* one = &view; one->superview() != nullptr; one = one->superview()) {
    place = place.movedBy(one->frame().x, one->frame().y);
  }
  return place;
}

std::vector<Rect> placesOf(const std::vector<ViewPtr>& views) {
  std::vector<Rect> places;
  std::ranges::transform(views, std::back_inserter(places), [](const ViewPtr& view) { return placeInWindow(*view); });
  return places;
}

RecognizerPtr recognizerOfPress(const View& modal, const View* focused, RemoteButton button) {
  return findRecognizer(modal, focused, [button](const GestureRecognizer& one) {
    const auto* tap = dynamic_cast<const TapGestureRecognizer*>(&one);
    return tap != nullptr && std::ranges::count(tap->allowedPressTypes(), button) > 0;
  });
}

RecognizerPtr recognizerOfSwipe(const View& modal, const View* focused, SwipeDirection direction) {
  return findRecognizer(modal, focused, [direction](const GestureRecognizer& one) {
    const auto* swipe = dynamic_cast<const SwipeGestureRecognizer*>(&one);
    return swipe != nullptr && swipe->direction() == direction;
  });
}

View* hitTest(View& view, Point point) {
  const bool isInside = view.bounds().contains(point);
  if (!takesPart(view) || (view.clipsToBounds() && !isInside)) {
    return nullptr;
  }
  const std::vector<View*> order = ViewDrawing::drawingOrder(view);
  for (auto inner = order.rbegin(); inner != order.rend(); ++inner) {
    const Transform& transform = (*inner)->transform();
    const bool hasPlace = transform.scaleX != 0.0 && transform.scaleY != 0.0;
    View* hit = hasPlace ? hitTest(**inner, throughTransform(**inner, point)) : nullptr;
    if (hit != nullptr) {
      return hit;
    }
  }
  return isInside ? &view : nullptr;
}

View* touchedView(View& modal, Point point) {
  const Point origin = placeInWindow(modal).origin();
  return takesPartWithAncestors(modal) ? hitTest(modal, {point.x - origin.x, point.y - origin.y}) : nullptr;
}

Tapped whatTapReaches(View& modal, View& touched) {
  Tapped tapped;
  const ViewPtr innermost = touched.shared_from_this();  // A delegate may remove any view.
  for (ViewPtr view = innermost; view != nullptr && modal.contains(*view); view = superviewOf(*view)) {
    for (const RecognizerPtr& one : std::vector<RecognizerPtr>(GestureRecognizer::of(*view))) {
      const bool isTap = dynamic_cast<TapGestureRecognizer*>(one.get()) != nullptr;
      const bool mayTake = isTap && (one->delegate() == nullptr || one->delegate()->shouldReceiveTouch(*one, touched));
      if (mayTake && tapped.recognizer == nullptr && tapped.view == nullptr) {
        tapped.recognizer = one;
      }
    }
    if (isFocusable(*view) && tapped.recognizer == nullptr && tapped.view == nullptr) {
      tapped.view = view;
    }
  }
  return tapped;
}

}  // namespace kesu
