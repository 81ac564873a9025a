#include <kesu/ui/Containers.h>

#include <utility>

#include "uikit/KeyWindow.h"

namespace kesu {
namespace {

// Main thread.
Window* currentKeyWindow = nullptr;
std::uint64_t currentNumber = 1;
std::function<void()> keyWindowCallback;

void setCurrentKeyWindow(Window* window) {
  currentKeyWindow = window;
  ++currentNumber;
  if (keyWindowCallback) {
    keyWindowCallback();
  }
}

/// Hands visibility from one screen, or what is shown over it, to another; either may be null.
void exchange(ViewController* before, ViewController* after, bool animated) {
  if (before != nullptr) {
    before->frontmost().disappear(animated);
  }
  if (after != nullptr) {
    after->frontmost().appear(animated);
  }
}

}  // namespace

Window* keyWindow() {
  return currentKeyWindow;
}

std::uint64_t keyWindowNumber() {
  return currentNumber;
}

void setKeyWindowCallback(std::function<void()> callback) {
  keyWindowCallback = std::move(callback);
}

TabBarController::~TabBarController() {
  disappear();
}

void TabBarController::setViewControllers(std::vector<ViewController*> controllers) {
  ViewController* before = selectedViewController();
  controllers_ = std::move(controllers);
  selected_ = 0;
  if (isVisible() && before != selectedViewController()) {
    exchange(before, selectedViewController(), false);
  }
}

void TabBarController::setSelectedIndex(std::size_t index, bool animated) {
  if (index >= controllers_.size() || index == selected_) {
    return;
  }
  ViewController* before = selectedViewController();
  selected_ = index;
  if (isVisible()) {
    exchange(before, selectedViewController(), animated);
  }
}

ViewController* TabBarController::selectedViewController() const {
  return selected_ < controllers_.size() ? controllers_[selected_] : nullptr;
}

void TabBarController::viewDidAppear(bool animated) {
  exchange(nullptr, selectedViewController(), animated);
}

void TabBarController::viewDidDisappear(bool animated) {
  exchange(selectedViewController(), nullptr, animated);
}

NavigationController::~NavigationController() {
  disappear();
}

void NavigationController::push(ViewController& controller, bool animated) {
  ViewController* before = lastOfStack();
  stack_.push_back(&controller);
  if (isVisible()) {
    exchange(before, &controller, animated);
  }
}

ViewController* NavigationController::pop(bool animated) {
  if (stack_.size() < 2) {
    return nullptr;
  }
  ViewController* popped = stack_.back();
  stack_.pop_back();
  if (isVisible()) {
    exchange(popped, lastOfStack(), animated);
  }
  return popped;
}

ViewController* NavigationController::visibleViewController() const {
  ViewController* last = lastOfStack();
  if (presentedViewController() != nullptr || last == nullptr) {
    return presentedViewController();
  }
  return last->presentedViewController() != nullptr ? last->presentedViewController() : last;
}

void NavigationController::viewDidAppear(bool animated) {
  exchange(nullptr, lastOfStack(), animated);
}

void NavigationController::viewDidDisappear(bool animated) {
  exchange(lastOfStack(), nullptr, animated);
}

void Window::setRootViewController(ViewController* root) {
  ViewController* before = std::exchange(root_, root);
  if (currentKeyWindow == this && before != root) {
    exchange(before, root, false);
  }
}

void Window::resignKey() {
  if (currentKeyWindow == this) {
    setCurrentKeyWindow(nullptr);
  }
}

void Window::makeKeyAndVisible() {
  Window* before = currentKeyWindow;
  if (before != this) {
    setCurrentKeyWindow(this);
    exchange(before != nullptr ? before->root_ : nullptr, root_, false);
  }
}

}  // namespace kesu
