#pragma once

#include <kesu/ui/Window.h>

#include <bitset>
#include <cstddef>
#include <memory>
#include <optional>

namespace kesu {

/// The focus of a window, and what a host's input does to its views. Main thread.
///
/// Input returns whether it was consumed, as all is while a modal view is up; only the end of a press that began before
/// that is left to the host. Functions of the host run in it, which may destroy the window and this.
class WindowInput : public std::enable_shared_from_this<WindowInput> {
 public:
  explicit WindowInput(Window& window) : window_(window) {}
  ~WindowInput();
  WindowInput(const WindowInput&) = delete;
  WindowInput& operator=(const WindowInput&) = delete;

  static WindowInput& of(Window& window) { return *window.input_; }

  /// See Window.
  View* focusedView();
  void setFocusedView(View* view);

  /// Moves the focus, where its view can no longer be focused, to the next one in reading order. Done before and after
  /// everything below and in focusedView(); the renderer's host does it before each frame.
  void updateFocus();

  /// Forwards arrows to the focused view, which else move the focus, again for each Began of a held button. Select
  /// presses, releases and activates the focused view. Menu and PlayPause, on their end, reach the one tap recogniser
  /// that allows them: outwards from the focused view, else the frontmost in the modal view.
  bool press(RemoteButton button, PressPhase phase);
  /// Reaches one swipe recogniser, found the same way. Without one, a swipe moves as its arrow does.
  bool swipe(SwipeDirection direction);
  /// Reaches the innermost tap recogniser around the touched view whose delegate allows it; a view that can be focused
  /// in front of that is focused and activated instead.
  bool tap(Point point);
  /// Cancels all presses under way.
  void cancelPresses();

 private:
  static constexpr std::size_t kButtons = static_cast<std::size_t>(RemoteButton::PlayPause) + 1;

  static void setFocused(View& view, bool focused);
  void focus(const ViewPtr& wanted);
  void beginPress(RemoteButton button);
  void endPress(RemoteButton button);
  void cancelSelect();
  void moveByArrow(RemoteButton arrow);

  Window& window_;
  std::weak_ptr<View> focused_;
  std::weak_ptr<View> focusedIn_;     // The modal view at that time.
  std::optional<Rect> focusedPlace_;  // In the window, when it was last looked at.
  std::weak_ptr<View> selected_;      // Where Select went down.
  std::bitset<kButtons> down_;        // Consumed presses that have not ended.
};

}  // namespace kesu
