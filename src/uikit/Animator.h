#pragma once

#include <kesu/ui/Animator.h>
#include <kesu/ui/View.h>

#include <memory>

namespace kesu {

/// Brings what is drawn to what views were told, step by step. Time is given to it, so that whoever drives it (the
/// host's frames, a test) has it in hand; a timer of the main loop ends animations that nobody draws. Main thread.
class Animator {
 public:
  static Animator& shared();

  Animator();
  ~Animator();

  /// See kesu::animate().
  void animate(double durationSeconds, const std::function<void()>& changes, AnimationCompletion completion);

  /// Moves every animation to this time; those that are over are completed, in the order in which they began. The first
  /// tick after animate() is its beginning. Times that go back, and NaN, count as no time.
  void tick(double nowSeconds);

  /// Whether anything is under way, a completion that is due included.
  bool isRunning() const;

  /// Ends everything at its aim, as finished; for views that nobody draws. What a completion starts anew goes on. Tests
  /// that leave animations behind call it before what their completions refer to goes away.
  void finishAll();

 private:
  friend class View;

  /// A view was told something: at once, or gradually inside of animate().
  void viewMoved(View& view, const ViewGeometry& from, const ViewGeometry& to);
  void viewWentAway(View& view);
  static void present(View& view, const ViewGeometry& next);

  struct State;
  std::shared_ptr<State> state_;  // Shared with timers that may outlive a main loop's turn.
};

}  // namespace kesu
