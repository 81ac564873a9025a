#include "uikit/WindowInput.h"

#include <algorithm>
#include <utility>

#include "uikit/FocusEngine.h"
#include "uikit/InputTargets.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

/// The arrows are the first of the enum.
bool isArrow(RemoteButton button) {
  return button <= RemoteButton::Right;
}

RemoteButton arrowOf(SwipeDirection direction) {
  switch (direction) {
    case SwipeDirection::Left:
      return RemoteButton::Left;
    case SwipeDirection::Right:
      return RemoteButton::Right;
    case SwipeDirection::Up:
      return RemoteButton::Up;
    case SwipeDirection::Down:
      break;
  }
  return RemoteButton::Down;
}

}  // namespace

WindowInput::~WindowInput() {
  if (const ViewPtr focused = focused_.lock()) {
    setFocused(*focused, false);
  }
}

View* WindowInput::focusedView() {
  updateFocus();
  return focused_.lock().get();
}

void WindowInput::setFocusedView(View* view) {
  View* modal = frontmostModal(window_);
  if (modal == nullptr) {
    updateFocus();
    return;
  }
  const std::vector<ViewPtr> views = focusableIn(*modal);
  if (view == nullptr) {
    focus(views.empty() ? nullptr : views[readingOrder(placesOf(views)).front()]);
    return;
  }
  const auto wanted = std::ranges::find(views, view, &ViewPtr::get);
  wanted != views.end() ? focus(*wanted) : updateFocus();
}

void WindowInput::updateFocus() {
  View* modal = frontmostModal(window_);
  const ViewPtr focused = focused_.lock();
  const std::vector<ViewPtr> views = modal != nullptr ? focusableIn(*modal) : std::vector<ViewPtr>();
  if (focused != nullptr && std::ranges::count(views, focused) > 0) {
    focusedPlace_ = placeInWindow(*focused);
    return;
  }
  if (views.empty()) {
    focus(nullptr);
    return;
  }
  const bool isSameModal = focusedIn_.lock().get() == modal && focusedPlace_.has_value();
  const std::vector<Rect> places = placesOf(views);
  focus(views[isSameModal ? *nearestInReadingOrder(places, *focusedPlace_) : readingOrder(places).front()]);
}

void WindowInput::setFocused(View& view, bool focused) {
  if (focused != view.isFocused_) {
    view.isFocused_ = focused;
    ViewDrawing::orderChanged(view);
  }
}

/// Null removes the focus, but keeps its last place: what appears later may be focused there.
void WindowInput::focus(const ViewPtr& wanted) {
  if (focused_.lock() != wanted) {
    cancelSelect();
  }
  View* modal = frontmostModal(window_);  // pressesCancelled() may have closed it.
  const ViewPtr next = wanted != nullptr && modal != nullptr && modal->contains(*wanted) ? wanted : nullptr;
  const ViewPtr before = focused_.lock();
  if (next != nullptr) {
    focusedPlace_ = placeInWindow(*next);
    focusedIn_ = modal->weak_from_this();
  }
  if (before == next) {
    return;
  }
  focused_ = next;
  if (before != nullptr) {
    setFocused(*before, false);
  }
  if (next != nullptr) {
    setFocused(*next, true);
  }
  if (before != nullptr) {
    before->didUpdateFocus();
  }
  if (next != nullptr && focused_.lock() == next) {
    next->didUpdateFocus();
  }
}

bool WindowInput::press(RemoteButton button, PressPhase phase) {
  const auto index = static_cast<std::size_t>(button);
  updateFocus();
  if (phase == PressPhase::Began) {
    const bool isRepeated = down_[index];
    const bool isConsumed = frontmostModal(window_) != nullptr;
    down_[index] = isConsumed;
    // Only arrows repeat: a held Select must not activate again, nor Menu close the next popup.
    if (isConsumed && (!isRepeated || isArrow(button))) {
      beginPress(button);
    }
    return isConsumed;
  }
  const bool wasConsumed = down_[index];
  down_.reset(index);
  if (wasConsumed && phase == PressPhase::Ended) {
    endPress(button);
  } else if (wasConsumed && button == RemoteButton::Select) {
    cancelSelect();
  }
  return wasConsumed;
}

void WindowInput::beginPress(RemoteButton button) {
  const std::weak_ptr<WindowInput> alive = weak_from_this();
  if (isArrow(button)) {
    moveByArrow(button);
  } else if (button == RemoteButton::Select) {
    const ViewPtr focused = focused_.lock();
    selected_ = focused;
    if (focused != nullptr) {
      focused->pressesBegan(button);
    }
  }
  if (!alive.expired()) {
    updateFocus();
  }
}

// A button's action or a recogniser may run functions of the host, which may destroy the window and this.
void WindowInput::endPress(RemoteButton button) {
  const std::weak_ptr<WindowInput> alive = weak_from_this();
  const ViewPtr selected = std::exchange(selected_, {}).lock();
  const ViewPtr focused = focused_.lock();
  View* modal = frontmostModal(window_);
  if (button == RemoteButton::Select && focused != nullptr) {
    if (selected == focused) {  // Else the focus has moved since: nothing was pressed.
      selected->pressesEnded(button);
      if (!alive.expired() && focusedView() == selected.get()) {
        selected->activate();
      }
    }
  } else if (modal != nullptr && !isArrow(button)) {
    if (const RecognizerPtr recognizer = recognizerOfPress(*modal, focused.get(), button)) {
      recognizer->recognize();
    }
  }
  if (!alive.expired()) {
    updateFocus();
  }
}

void WindowInput::cancelSelect() {
  if (const ViewPtr selected = std::exchange(selected_, {}).lock()) {
    selected->pressesCancelled(RemoteButton::Select);
  }
}

void WindowInput::cancelPresses() {
  down_.reset();
  cancelSelect();
  updateFocus();
}

void WindowInput::moveByArrow(RemoteButton arrow) {
  const ViewPtr focused = focused_.lock();
  if (focused == nullptr || focused->handleArrow(arrow)) {
    return;
  }
  View* modal = frontmostModal(window_);
  const std::vector<ViewPtr> views = modal != nullptr ? focusableIn(*modal) : std::vector<ViewPtr>();
  const auto here = std::ranges::find(views, focused);
  if (here == views.end()) {
    return;
  }
  const FocusMoves moves = focusGraph(placesOf(views))[static_cast<std::size_t>(here - views.begin())];
  if (const std::optional<std::size_t> next = moves[static_cast<std::size_t>(arrow)]) {
    focus(views[*next]);
  }
}

bool WindowInput::swipe(SwipeDirection direction) {
  updateFocus();
  View* modal = frontmostModal(window_);
  if (modal == nullptr) {
    return false;
  }
  const std::weak_ptr<WindowInput> alive = weak_from_this();
  const ViewPtr focused = focused_.lock();
  if (const RecognizerPtr recognizer = recognizerOfSwipe(*modal, focused.get(), direction)) {
    recognizer->recognize();
  } else {
    moveByArrow(arrowOf(direction));
  }
  if (!alive.expired()) {
    updateFocus();
  }
  return true;
}

bool WindowInput::tap(Point point) {
  updateFocus();
  View* modal = frontmostModal(window_);
  if (modal == nullptr) {
    return false;
  }
  const std::weak_ptr<WindowInput> alive = weak_from_this();
  View* touched = touchedView(*modal, point);
  if (touched != nullptr) {
    const ViewPtr kept = modal->shared_from_this();  // A delegate may close it.
    const Tapped tapped = whatTapReaches(*modal, *touched);
    if (tapped.recognizer != nullptr) {
      tapped.recognizer->recognize();
    } else if (tapped.view != nullptr) {
      setFocusedView(tapped.view.get());
      tapped.view->activate();
    }
  }
  if (!alive.expired()) {
    updateFocus();
  }
  return true;
}

}  // namespace kesu
