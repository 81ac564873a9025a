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
  /// tick after animate() is its beginning. Times that go back count as no time.
  void tick(double nowSeconds);

  /// Whether anything is under way.
  bool isRunning() const;

  /// Ends everything at its aim, as finished; for views that nobody draws.
  void finishAll();

 private:
  friend class View;

  /// A view was told something: at once, or gradually inside of animate().
  void viewMoved(View& view, const ViewGeometry& from, const ViewGeometry& to);
  void viewWentAway(View& view);

  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kesu
