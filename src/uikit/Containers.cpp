#include <kesu/ui/NavigationController.h>
#include <kesu/ui/TabBarController.h>

#include <utility>

#include "uikit/Appearance.h"

namespace kesu {

TabBarController::~TabBarController() {
  disappear();  // The destructor of the base class would no longer know the child.
}

void TabBarController::setViewControllers(std::vector<ViewController*> controllers) {
  ViewController* before = selectedViewController();
  controllers_ = std::move(controllers);
  selected_ = 0;
  if (isVisible() && before != selectedViewController()) {
    exchangeScreens(before, selectedViewController(), false);
  }
}

void TabBarController::setSelectedIndex(std::size_t index, bool animated) {
  if (index >= controllers_.size() || index == selected_) {
    return;
  }
  ViewController* before = selectedViewController();
  selected_ = index;
  if (isVisible()) {
    exchangeScreens(before, selectedViewController(), animated);
  }
}

ViewController* TabBarController::selectedViewController() const {
  return selected_ < controllers_.size() ? controllers_[selected_] : nullptr;
}

NavigationController::~NavigationController() {
  disappear();  // As above.
}

void NavigationController::push(ViewController& controller, bool animated) {
  ViewController* before = lastOfStack();
  stack_.push_back(&controller);
  if (isVisible()) {
    exchangeScreens(before, &controller, animated);
  }
}

ViewController* NavigationController::pop(bool animated) {
  if (stack_.size() < 2) {
    return nullptr;
  }
  ViewController* popped = stack_.back();
  stack_.pop_back();
  if (isVisible()) {
    exchangeScreens(popped, lastOfStack(), animated);
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

}  // namespace kesu
