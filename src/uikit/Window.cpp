#include <kesu/ui/Window.h>

#include <utility>

#include "uikit/Appearance.h"
#include "uikit/KeyWindow.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

constexpr Rect kScreen{0.0, 0.0, 1920.0, 1080.0};  // In points, whatever the host's pixels.

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

Window::Window() : View(kScreen), input_(std::make_shared<WindowInput>(*this)) {
  isWindow_ = true;
}

Window::~Window() {
  if (currentKeyWindow == this) {
    setCurrentKeyWindow(nullptr);
  }
  changeCallback_ = nullptr;
  input_.reset();  // While there still is a window to note that the focused view changes.
}

View* Window::focusedView() const {
  return input_->focusedView();
}

void Window::setFocusedView(View* view) {
  input_->setFocusedView(view);
}

void Window::setRootViewController(ViewController* root) {
  ViewController* before = std::exchange(root_, root);
  if (currentKeyWindow == this && before != root) {
    exchangeScreens(before, root, false);
  }
}

void Window::makeKeyAndVisible() {
  Window* before = currentKeyWindow;
  if (before != this) {
    setCurrentKeyWindow(this);
    exchangeScreens(before != nullptr ? before->root_ : nullptr, root_, false);
  }
}

}  // namespace kesu
