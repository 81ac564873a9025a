#include "uikit/InputTargets.h"

#include <algorithm>
#include <iterator>

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

/// Null for a window as well, which nobody shares.
ViewPtr superviewOf(const View& view) {
  return view.superview() != nullptr ? view.superview()->weak_from_this().lock() : nullptr;
}

void findModal(View& view, View*& found) {
  if (view.isHidden()) {
    return;
  }
  found = view.isModal() ? &view : found;
  for (View* subview : view.drawingOrder()) {
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
  const auto& all = view.gestureRecognizers();
  const auto found = std::find_if(all.rbegin(), all.rend(), [&](const RecognizerPtr& one) { return fits(*one); });
  return found != all.rend() ? *found : nullptr;
}

template <typename Fits>
RecognizerPtr frontmostRecognizer(const View& view, Fits fits) {
  if (!takesPart(view)) {
    return nullptr;
  }
  const std::vector<View*> order = view.drawingOrder();
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

View* frontmostModal(const View& root) {
  View* found = nullptr;
  for (View* view : root.drawingOrder()) {
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
  const Point origin = view.toWindow({});
  return {origin.x, origin.y, view.bounds().width, view.bounds().height};
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

View* touchedView(View& modal, Point point) {
  return takesPartWithAncestors(modal) ? modal.hitTest(modal.fromWindow(point)) : nullptr;
}

Tapped whatTapReaches(View& modal, View& touched) {
  Tapped tapped;
  const ViewPtr innermost = touched.shared_from_this();  // A delegate may take anything away.
  for (ViewPtr view = innermost; view != nullptr && modal.contains(*view); view = superviewOf(*view)) {
    for (const RecognizerPtr& one : std::vector<RecognizerPtr>(view->gestureRecognizers())) {
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
