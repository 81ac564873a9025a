#pragma once

#include <kesu/ui/View.h>

#include <functional>
#include <memory>

namespace kesu {

/// Called once when an animation ends: true when it ran to its end, false when another one replaced it or the view was
/// destroyed. Main thread, inside Overlay's frame or MainLoop::pump().
using AnimationCompletion = std::function<void(bool finished)>;

/// Runs `changes` at once and animates what they set on views (place, size, transform, alpha, shadow) for
/// `durationSeconds`, slow at both ends. A value that is set again meanwhile continues from where it is, and the
/// earlier animation ends unfinished. A duration of 0 (or less, or NaN) sets everything at once and calls `completion`
/// before it returns; the longest is an hour. Animations that are not drawn are ended by the main loop, a second late.
/// Either function may be empty, may animate, and may remove views; `completion` is kept after the call. Main thread.
void animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion = {});

/// Moves what views present to what was set, step by step. Driven by the times of the host's frames; a timer of the
/// main loop ends animations that are not drawn. Main thread.
class Animator {
 public:
  static Animator& shared();

  Animator();
  ~Animator();

  /// See kesu::animate().
  void animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion);

  /// Moves every animation to this time and completes those that are over, in the order in which they began. The first
  /// tick after animate() is its beginning. Times that go back, and NaN, count as no time.
  void tick(double nowSeconds);

  /// Whether anything is animated or a completion is due.
  bool isRunning() const;

  /// Ends everything at its final values, as finished; what a completion starts continues. For tests, before what their
  /// completions refer to is destroyed.
  void finishAll();

 private:
  friend class View;

  /// Presents what was set on a view: at once, or gradually inside animate().
  void viewMoved(View& view, const ViewGeometry& from, const ViewGeometry& to);
  void viewDestroyed(View& view);

  struct State;
  std::shared_ptr<State> state_;  // Shared with timers that may outlive a main loop's turn.
};

}  // namespace kesu
