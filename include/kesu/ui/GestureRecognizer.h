#pragma once

#include <kesu/Export.h>
#include <kesu/ui/Remote.h>

#include <functional>
#include <utility>
#include <vector>

namespace kesu {

class GestureRecognizer;
class View;

/// May keep a recogniser from looking at a touch. Main thread.
class KESU_API GestureRecognizerDelegate {
 public:
  virtual ~GestureRecognizerDelegate() = default;
  /// Asked before each tap with a pointer, never before presses and swipes. `touched` is the innermost view at the
  /// place: the recogniser's own or one that lies inside it. False: the tap is for whoever is around.
  virtual bool shouldReceiveTouch(GestureRecognizer& /*recognizer*/, View& /*touched*/) { return true; }
};

/// Turns presses and touches on a view, and on all that lies inside it, into one call: see View::addGestureRecognizer.
/// Main thread. The action may take the view away; the recogniser lives until it is over.
class KESU_API GestureRecognizer {
 public:
  /// Gestures are made at once here: only Possible and Ended occur.
  enum class State { Possible = 0, Began = 1, Changed = 2, Ended = 3, Cancelled = 4 };
  using Action = std::function<void(GestureRecognizer&)>;

  explicit GestureRecognizer(Action action) : action_(std::move(action)) {}
  virtual ~GestureRecognizer() = default;

  State state() const { return state_; }
  /// Not owned; it outlives the recogniser, or is taken away.
  void setDelegate(GestureRecognizerDelegate* delegate) { delegate_ = delegate; }
  GestureRecognizerDelegate* delegate() const { return delegate_; }

  /// The gesture was made: the action runs with the state Ended, which then is Possible again.
  void recognize();

 private:
  Action action_;
  GestureRecognizerDelegate* delegate_ = nullptr;
  State state_ = State::Possible;
};

/// A tap with the pointer, or a press of one of the allowed buttons.
class KESU_API TapGestureRecognizer : public GestureRecognizer {
 public:
  using GestureRecognizer::GestureRecognizer;

  /// With buttons set, presses of these count; taps with a pointer always do.
  void setAllowedPressTypes(std::vector<RemoteButton> buttons) { allowedPressTypes_ = std::move(buttons); }
  const std::vector<RemoteButton>& allowedPressTypes() const { return allowedPressTypes_; }

 private:
  std::vector<RemoteButton> allowedPressTypes_;
};

/// A swipe in one direction.
class KESU_API SwipeGestureRecognizer : public GestureRecognizer {
 public:
  SwipeGestureRecognizer(SwipeDirection direction, Action action)
      : GestureRecognizer(std::move(action)), direction_(direction) {}
  SwipeDirection direction() const { return direction_; }

 private:
  SwipeDirection direction_;
};

}  // namespace kesu
