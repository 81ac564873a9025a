#pragma once

#include <kesu/ui/View.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kesu {

class GestureRecognizer;

/// May exclude a recogniser from a touch. Main thread.
class GestureRecognizerDelegate {
 public:
  virtual ~GestureRecognizerDelegate() = default;
  /// Called before each tap with a pointer, never before presses and swipes. `touched` is the innermost view at the
  /// point: the recogniser's own or one inside it. Returns false to leave the tap to the views around.
  virtual bool shouldReceiveTouch(GestureRecognizer& /*recognizer*/, View& /*touched*/) { return true; }
};

/// Turns presses and touches on a view, and on all that lies inside it, into one call. Main thread. Works while the
/// view is a modal one or lies in one. The action may remove the view; the recogniser lives until it returns.
class GestureRecognizer {
 public:
  /// Gestures are recognised at once here: only Possible and Ended occur.
  enum class State { Possible = 0, Began = 1, Changed = 2, Ended = 3, Cancelled = 4 };
  using Action = std::function<void(GestureRecognizer&)>;

  /// Adds a recogniser to a view, which owns it from then on.
  static void add(View& view, std::shared_ptr<GestureRecognizer> recognizer);
  /// The recognisers of a view, in the order in which they were added.
  static const std::vector<std::shared_ptr<GestureRecognizer>>& of(const View& view) { return view.recognizers_; }

  explicit GestureRecognizer(Action action) : action_(std::move(action)) {}
  virtual ~GestureRecognizer() = default;

  State state() const { return state_; }
  /// Not owned; must outlive the recogniser or be removed first.
  void setDelegate(GestureRecognizerDelegate* delegate) { delegate_ = delegate; }
  GestureRecognizerDelegate* delegate() const { return delegate_; }

  /// Runs the action with the state Ended, which then is Possible again.
  void recognize();

 private:
  Action action_;
  GestureRecognizerDelegate* delegate_ = nullptr;
  State state_ = State::Possible;
};

/// A tap with the pointer, or a press of one of the allowed buttons.
class TapGestureRecognizer : public GestureRecognizer {
 public:
  using GestureRecognizer::GestureRecognizer;

  /// Sets the buttons that count as a tap; taps with a pointer always do.
  void setAllowedPressTypes(std::vector<RemoteButton> buttons) { allowedPressTypes_ = std::move(buttons); }
  const std::vector<RemoteButton>& allowedPressTypes() const { return allowedPressTypes_; }

 private:
  std::vector<RemoteButton> allowedPressTypes_;
};

/// A swipe in one direction.
class SwipeGestureRecognizer : public GestureRecognizer {
 public:
  SwipeGestureRecognizer(SwipeDirection direction, Action action)
      : GestureRecognizer(std::move(action)), direction_(direction) {}
  SwipeDirection direction() const { return direction_; }

 private:
  SwipeDirection direction_;
};

}  // namespace kesu
