#include <kesu/ui/Containers.h>

#include <utility>

#include "uikit/KeyWindow.h"

namespace kesu {
namespace {

Window* currentKeyWindow = nullptr;  // Main thread.

/// Hands visibility from one screen to another; either may be null.
void exchange(ViewController* before, ViewController* after, bool animated) {
  if (before != nullptr) {
    before->disappear(animated);
  }
  if (after != nullptr) {
    after->appear(animated);
  }
}

}  // namespace

Window* keyWindow() {
  return currentKeyWindow;
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
  ViewController* before = visibleViewController();
  stack_.push_back(&controller);
  if (isVisible()) {
    exchange(before, &controller, animated);
  }
}

ViewController* NavigationController::pop(bool animated) {
  if (stack_.size() < 2) {
    return nullptr;
  }
  ViewController* before = visibleViewController();
  ViewController* popped = stack_.back();
  stack_.pop_back();
  if (isVisible()) {
    exchange(before, visibleViewController(), animated);
  }
  return popped;
}

ViewController* NavigationController::visibleViewController() const {
  if (stack_.empty()) {
    return nullptr;
  }
  ViewController* presented = stack_.back()->presentedViewController();
  return presented != nullptr ? presented : stack_.back();
}

void NavigationController::viewDidAppear(bool animated) {
  exchange(nullptr, visibleViewController(), animated);
}

void NavigationController::viewDidDisappear(bool animated) {
  exchange(visibleViewController(), nullptr, animated);
}

Window::~Window() {
  if (currentKeyWindow == this) {
    currentKeyWindow = nullptr;
  }
}

void Window::setRootViewController(ViewController* root) {
  ViewController* before = std::exchange(root_, root);
  if (currentKeyWindow == this && before != root) {
    exchange(before, root, false);
  }
}

void Window::makeKeyAndVisible() {
  Window* before = std::exchange(currentKeyWindow, this);
  if (before != this) {
    exchange(before != nullptr ? before->root_ : nullptr, root_, false);
  }
}

}  // namespace kesu
