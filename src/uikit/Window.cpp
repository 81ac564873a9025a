#include <kesu/ui/Window.h>

#include <utility>

#include "uikit/Appearance.h"
#include "uikit/KeyWindow.h"
#include "uikit/WindowInput.h"

namespace kesu {
namespace {

constexpr Rect kScreen{0.0, 0.0, 1920.0, 1080.0};  // In points, whatever the host's pixels.

// Main thread. Never destroyed: a window that a host destroys while the process ends still uses it.
struct KeyWindowState {
  Window* window = nullptr;
  std::uint64_t number = 1;
  std::function<void()> callback;
};

KeyWindowState& state() {
  static KeyWindowState& made = *new KeyWindowState;
  return made;
}

void setCurrentKeyWindow(Window* window) {
  state().window = window;
  ++state().number;
  if (state().callback) {
    state().callback();
  }
}

}  // namespace

Window* keyWindow() {
  return state().window;
}

std::uint64_t keyWindowNumber() {
  return state().number;
}

void setKeyWindowCallback(std::function<void()> callback) {
  state().callback = std::move(callback);
}

Window::Window() : View(kScreen), input_(std::make_shared<WindowInput>(*this)) {
  isWindow_ = true;
}

Window::~Window() {
  if (state().window == this) {
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
  if (state().window == this && before != root) {
    exchangeScreens(before, root, false);
  }
}

void Window::makeKeyAndVisible() {
  Window* before = state().window;
  if (before != this) {
    setCurrentKeyWindow(this);
    exchangeScreens(before != nullptr ? before->root_ : nullptr, root_, false);
  }
}

}  // namespace kesu
