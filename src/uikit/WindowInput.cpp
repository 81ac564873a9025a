#include <kesu/ui/Containers.h>

#include <algorithm>
#include <bitset>
#include <optional>
#include <utility>

#include "uikit/FocusEngine.h"
#include "uikit/InputTargets.h"

namespace kesu {
namespace {

constexpr std::size_t kButtons = static_cast<std::size_t>(RemoteButton::PlayPause) + 1;

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

struct Window::Input {
  std::weak_ptr<View> focused;
  std::weak_ptr<View> focusedIn;     // The modal view at that time.
  std::optional<Rect> focusedPlace;  // In the window, when it was last looked at.
  std::weak_ptr<View> selected;      // Where Select went down.
  std::bitset<kButtons> down;        // Presses that were taken and are not over.
};

Window::Window() : View({0.0, 0.0, 1920.0, 1080.0}), input_(std::make_shared<Input>()) {
  isWindow_ = true;
}

Window::~Window() {
  resignKey();
  changeCallback_ = nullptr;
  if (const ViewPtr focused = input_->focused.lock()) {
    focused->setFocused(false);
  }
}

void Window::didChange() {
  ++changeCount_;
  if (changeCallback_) {
    changeCallback_();
  }
}

View* Window::modalView() const {
  return isHidden() ? nullptr : frontmostModal(*this);
}

View* Window::focusedView() const {
  const_cast<Window*>(this)->updateFocus();
  return input_->focused.lock().get();
}

void Window::setFocusedView(View* view) {
  View* modal = modalView();
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

void Window::updateFocus() {
  View* modal = modalView();
  const ViewPtr focused = input_->focused.lock();
  const std::vector<ViewPtr> views = modal != nullptr ? focusableIn(*modal) : std::vector<ViewPtr>();
  if (focused != nullptr && std::ranges::count(views, focused) > 0) {
    input_->focusedPlace = placeInWindow(*focused);
    return;
  }
  if (views.empty()) {
    focus(nullptr);
    return;
  }
  const bool isSameModal = input_->focusedIn.lock().get() == modal && input_->focusedPlace.has_value();
  const std::vector<Rect> places = placesOf(views);
  focus(views[isSameModal ? *nearestInReadingOrder(places, *input_->focusedPlace) : readingOrder(places).front()]);
}

/// Null takes the focus away, but not what is known about where it was.
void Window::focus(const ViewPtr& wanted) {
  if (input_->focused.lock() != wanted) {
    cancelSelect();
  }
  View* modal = modalView();  // What was cancelled may have closed it.
  const ViewPtr next = wanted != nullptr && modal != nullptr && modal->contains(*wanted) ? wanted : nullptr;
  const ViewPtr before = input_->focused.lock();
  if (next != nullptr) {
    input_->focusedPlace = placeInWindow(*next);
    input_->focusedIn = modal->weak_from_this();
  }
  if (before == next) {
    return;
  }
  input_->focused = next;
  if (before != nullptr) {
    before->setFocused(false);
  }
  if (next != nullptr) {
    next->setFocused(true);
  }
  if (before != nullptr) {
    before->didUpdateFocus();
  }
  if (next != nullptr && input_->focused.lock() == next) {
    next->didUpdateFocus();
  }
}

bool Window::press(RemoteButton button, PressPhase phase) {
  const auto index = static_cast<std::size_t>(button);
  updateFocus();
  if (phase == PressPhase::Began) {
    const bool isRepeated = input_->down[index];
    const bool isTaken = modalView() != nullptr;
    input_->down[index] = isTaken;
    if (isTaken && (!isRepeated || isArrow(button))) {
      beginPress(button);
    }
    return isTaken;
  }
  const bool isOurs = input_->down[index];
  input_->down.reset(index);
  if (isOurs && phase == PressPhase::Ended) {
    endPress(button);
  } else if (isOurs && button == RemoteButton::Select) {
    cancelSelect();
  }
  return isOurs;
}

void Window::beginPress(RemoteButton button) {
  const std::weak_ptr<Input> alive = input_;
  if (isArrow(button)) {
    moveByArrow(button);
  } else if (button == RemoteButton::Select) {
    const ViewPtr focused = input_->focused.lock();
    input_->selected = focused;
    if (focused != nullptr) {
      focused->pressesBegan(button);
    }
  }
  if (!alive.expired()) {
    updateFocus();
  }
}

// Host's functions run in here, which may destroy the window.
void Window::endPress(RemoteButton button) {
  const std::weak_ptr<Input> alive = input_;
  const ViewPtr selected = std::exchange(input_->selected, {}).lock();
  const ViewPtr focused = input_->focused.lock();
  View* modal = modalView();
  if (button == RemoteButton::Select && focused != nullptr) {
    if (selected == focused) {
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

void Window::cancelSelect() {
  if (const ViewPtr selected = std::exchange(input_->selected, {}).lock()) {
    selected->pressesCancelled(RemoteButton::Select);
  }
}

void Window::cancelPresses() {
  input_->down.reset();
  cancelSelect();
  updateFocus();
}

void Window::moveByArrow(RemoteButton arrow) {
  const ViewPtr focused = input_->focused.lock();
  if (focused == nullptr || focused->handleArrow(arrow)) {
    return;
  }
  View* modal = modalView();
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

bool Window::swipe(SwipeDirection direction) {
  updateFocus();
  View* modal = modalView();
  if (modal == nullptr) {
    return false;
  }
  const std::weak_ptr<Input> alive = input_;
  const ViewPtr focused = input_->focused.lock();
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

bool Window::tap(Point point) {
  updateFocus();
  View* modal = modalView();
  if (modal == nullptr) {
    return false;
  }
  const std::weak_ptr<Input> alive = input_;
  View* touched = touchedView(*modal, point);
  if (touched != nullptr) {
    const ViewPtr kept = modal->shared_from_this();
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
