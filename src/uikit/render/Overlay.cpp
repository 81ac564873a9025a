#include <kesu/ui/Overlay.h>
#include <kesu/ui/Window.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "uikit/AccessibilityTree.h"
#include "uikit/Animator.h"
#include "uikit/InputTargets.h"
#include "uikit/KeyWindow.h"
#include "uikit/ViewDrawing.h"
#include "uikit/WindowInput.h"
#include "uikit/render/Renderer.h"

namespace kesu {
namespace {

constexpr int kLargestSide = 8192;

/// Requests a frame from the host, once until it has drawn one.
struct FrameRequest {
  void send() {
    const std::function<void()> running = callback;  // It may replace itself.
    if (!std::exchange(isSent, true) && running) {
      running();
    }
  }

  std::function<void()> callback;
  bool isSent = false;
};

}  // namespace

struct Overlay::State {
  Window& window();
  void listen();
  void keyWindowChanged();
  void beginFrame(double nowSeconds);
  void endFrame();
  bool differs() const;
  Point toPoints(double x, double y) const;

  Renderer renderer;
  std::unique_ptr<Window> ownWindow;
  // Windows refer to it weakly: one may outlive the overlay.
  std::shared_ptr<FrameRequest> request = std::make_shared<FrameRequest>();
  std::uint64_t watched = 0;  // Number of the key window whose changes are observed.
  std::uint64_t drawn = 0;    // Of the key window in the last frame.
  std::uint64_t drawnChanges = 0;
  bool isSizeNew = false;
  bool isOrphan = false;  // Its overlay was destroyed, by a function of the host that was called from here.
  int width = 1920;
  int height = 1080;
};

/// The key window, made when there is none, and observed.
Window& Overlay::State::window() {
  if (keyWindow() == nullptr) {
    ownWindow = std::make_unique<Window>();
    ownWindow->makeKeyAndVisible();
  }
  listen();
  return *keyWindow();
}

void Overlay::State::listen() {
  Window* window = keyWindow();
  if (window == nullptr || watched == keyWindowNumber()) {
    return;
  }
  watched = keyWindowNumber();
  ViewDrawing::setChangeCallback(*window, [weak = std::weak_ptr(request)] {
    if (const std::shared_ptr<FrameRequest> alive = weak.lock()) {
      alive->send();
    }
  });
}

/// Hosts that draw on demand call nothing until a frame is requested.
void Overlay::State::keyWindowChanged() {
  listen();
  if (differs()) {
    request->send();
  }
}

void Overlay::State::beginFrame(double nowSeconds) {
  WindowInput::of(window()).updateFocus();
  Animator::shared().tick(nowSeconds);
}

void Overlay::State::endFrame() {
  drawn = keyWindowNumber();
  drawnChanges = keyWindow() != nullptr ? ViewDrawing::changeCount(*keyWindow()) : 0;
  isSizeNew = false;
  request->isSent = differs();
}

bool Overlay::State::differs() const {
  const Window* window = keyWindow();
  const bool isDrawn = drawn == keyWindowNumber();
  const bool isOther = !isDrawn && (drawn != 0 || (window != nullptr && !window->subviews().empty()));
  return isSizeNew || isOther || (window != nullptr && ViewDrawing::changeCount(*window) != drawnChanges && isDrawn) ||
         Animator::shared().isRunning() || renderer.lacksModule();
}

Point Overlay::State::toPoints(double x, double y) const {
  const double scale = height / kScreenHeight;
  return {(x - (width - kScreenWidth * scale) / 2.0) / scale, y / scale};
}

Overlay::Overlay() : state_(std::make_shared<State>()) {
  setKeyWindowCallback([weak = std::weak_ptr(state_)] {
    if (const std::shared_ptr<State> state = weak.lock()) {
      state->keyWindowChanged();
    }
  });
  state_->window();
}

Overlay::~Overlay() {
  state_->isOrphan = true;
  state_->request->callback = nullptr;
}

void Overlay::setPixelSize(int width, int height) {
  const int columns = std::clamp(width, 1, kLargestSide);
  const int rows = std::clamp(height, 1, kLargestSide);
  if (columns != state_->width || rows != state_->height) {
    state_->width = columns;
    state_->height = rows;
    state_->isSizeNew = true;
    state_->request->send();
  }
}

bool Overlay::isModal() const {
  return frontmostModal(state_->window()) != nullptr;
}

// Presses and frames call functions of the host, which may destroy the overlay: each keeps the state until it returns.

bool Overlay::press(RemoteButton button, PressPhase phase) {
  const std::shared_ptr<State> state = state_;
  return WindowInput::of(state->window()).press(button, phase);
}

bool Overlay::swipe(SwipeDirection direction) {
  const std::shared_ptr<State> state = state_;
  return WindowInput::of(state->window()).swipe(direction);
}

bool Overlay::tap(double x, double y) {
  const std::shared_ptr<State> state = state_;
  return std::isfinite(x) && std::isfinite(y) && WindowInput::of(state->window()).tap(state->toPoints(x, y));
}

void Overlay::cancelPresses() {
  const std::shared_ptr<State> state = state_;
  WindowInput::of(state->window()).cancelPresses();
}

bool Overlay::needsFrame() const {
  return state_->differs();
}

void Overlay::setNeedsFrameCallback(std::function<void()> callback) {
  const std::shared_ptr<State> state = state_;
  state->request->callback = std::move(callback);
  state->request->isSent = false;
  if (state->differs()) {
    state->request->send();
  }
}

const std::vector<FrameLayer>& Overlay::layers(double nowSeconds) {
  static const auto& none = *new std::vector<FrameLayer>;  // Never destroyed: hosts may draw until the process ends.
  const std::shared_ptr<State> state = state_;
  state->beginFrame(nowSeconds);
  if (state->isOrphan) {
    return none;
  }
  const std::vector<FrameLayer>& layers = state->renderer.layers(state->window(), state->width, state->height);
  state->endFrame();
  return layers;
}

const FlatFrame& Overlay::flatten(double nowSeconds) {
  static const auto& none = *new FlatFrame;
  const std::shared_ptr<State> state = state_;
  state->beginFrame(nowSeconds);
  if (state->isOrphan) {
    return none;
  }
  const FlatFrame& frame = state->renderer.flatten(state->window(), state->width, state->height);
  state->endFrame();
  return frame;
}

ImagePtr Overlay::snapshot() {
  return state_->renderer.snapshot(state_->window(), state_->width, state_->height);
}

std::vector<AccessibilityNode> Overlay::accessibilityTree() const {
  return kesu::accessibilityTree(state_->window());
}

}  // namespace kesu
