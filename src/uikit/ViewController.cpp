#include <cxxabi.h>
#include <kesu/ui/ViewController.h>

#include <cstdlib>
#include <memory>
#include <typeinfo>
#include <utility>

#include "uikit/Appearance.h"

namespace kesu {
namespace {

AppearanceObserver* appearanceObserver = nullptr;  // Main thread.

std::string demangled(const char* name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> readable(abi::__cxa_demangle(name, nullptr, nullptr, &status),
                                                        std::free);
  return status == 0 ? readable.get() : name;
}

}  // namespace

void setAppearanceObserver(AppearanceObserver* observer) {
  appearanceObserver = observer;
}

void exchangeScreens(ViewController* before, ViewController* after, bool animated) {
  if (before != nullptr) {
    before->frontmost().disappear(animated);
  }
  if (after != nullptr) {
    after->frontmost().appear(animated);
  }
}

ViewController::~ViewController() {
  if (presenting_ != nullptr) {
    presenting_->presented_ = nullptr;
  }
  if (presented_ != nullptr) {
    presented_->presenting_ = nullptr;
  }
  disappear();
}

const std::string& ViewController::className() {
  if (className_.empty()) {
    className_ = demangled(typeid(*this).name());
  }
  return className_;
}

void ViewController::appear(bool animated) {
  if (isVisible_) {
    return;
  }
  isVisible_ = true;
  className();  // Cached now: disappear() may run in a destructor, which no longer knows the class.
  viewDidAppear(animated);
  if (isVisible_) {
    exchangeScreens(nullptr, visibleChild(), animated);
  }
  if (appearanceObserver != nullptr) {
    appearanceObserver->didAppear(*this);
  }
}

void ViewController::disappear(bool animated) {
  if (!isVisible_) {
    return;
  }
  isVisible_ = false;  // First: the hook may show the screen again.
  exchangeScreens(visibleChild(), nullptr, animated);
  viewDidDisappear(animated);
  if (appearanceObserver != nullptr) {
    appearanceObserver->didDisappear(*this);
  }
}

bool ViewController::isShownOver(const ViewController& other) const {
  const ViewController* below = this;
  while (below != nullptr && below != &other) {
    below = below->presenting_;
  }
  return below != nullptr;
}

ViewController& ViewController::frontmost() {
  ViewController* front = this;
  while (front->presented_ != nullptr) {
    front = front->presented_;
  }
  return *front;
}

void ViewController::present(ViewController& controller, bool animated) {
  if (presented_ != nullptr || controller.presenting_ != nullptr || isShownOver(controller)) {
    return;
  }
  presented_ = &controller;
  controller.presenting_ = this;
  if (isVisible_) {
    disappear(animated);
    controller.frontmost().appear(animated);
  }
}

void ViewController::dismissPresented(bool animated) {
  if (presented_ == nullptr) {
    return;
  }
  ViewController& front = frontmost();
  // All are unlinked before a hook runs, which may present again.
  for (ViewController* above = presented_; above != nullptr;) {
    ViewController* const dismissed = std::exchange(above, above->presented_);
    dismissed->presenting_->presented_ = nullptr;
    dismissed->presenting_ = nullptr;
  }
  if (front.isVisible()) {
    front.disappear(animated);
    appear(animated);
  }
}

ViewController* topViewControllerWithRootViewController(ViewController* root) {
  ViewController* top = nullptr;
  for (ViewController* next = root; next != nullptr;) {
    top = next;
    // A container covers its children with what it presents itself.
    next = top->presentedViewController() != nullptr ? top->presentedViewController() : top->visibleChild();
  }
  return top;
}

}  // namespace kesu
