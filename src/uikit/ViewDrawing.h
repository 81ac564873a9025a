#pragma once

#include <kesu/ui/Window.h>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace kesu {

/// The side of views that the renderer, the animator and views that draw themselves see: how a view is presented while
/// animations run, the pictures that views are drawn into, and which parts of those are damaged. Main thread.
class ViewDrawing {
 public:
  /// The view as it is drawn at the moment of the last Animator::tick().
  static const ViewGeometry& presented(const View& view) { return view.drawing_.presented; }
  static void present(View& view, const ViewGeometry& next);
  /// The bounds as they are drawn at the moment; View::draw() fills these.
  static Rect presentedBounds(const View& view);
  static bool isDrawn(const View& view) { return !view.isHidden() && presented(view).alpha > 0.0; }

  /// Whether the animator may move properties of the view: spares others the search.
  static bool isAnimated(const View& view) { return view.drawing_.isAnimated; }
  static void setAnimated(View& view) { view.drawing_.isAnimated = true; }

  /// A composited view with all that is in it is one picture of its own, which is only drawn again when something in it
  /// changes and otherwise moved and faded as it is. Subviews of a window always are.
  static bool isComposited(const View& view);
  static void setComposited(View& view, bool composited);

  /// The subviews from the back to the front: in their order, but the focused one is the last.
  static std::vector<View*> drawingOrder(const View& view);
  /// Has the view drawn at another place among its siblings.
  static void orderChanged(View& view);

  static void draw(const View& view, Canvas& canvas) { view.draw(canvas); }
  /// Has the view itself drawn again.
  static void setNeedsDisplay(View& view) { addDamage(view, bodyExtent(view)); }
  /// Sets a member of the view, which is drawn again if that changed it.
  template <typename Value>
  static void set(View& view, Value& member, Value value);
  /// Changes the extent of the view, and has everything drawn again that it touches before and after.
  template <typename Change>
  static void repaint(View& view, Change change);

  /// The whole rectangle that the view touches on the screen now, in its superview's coordinates: transform and shadow
  /// are in it, and what its subviews draw outside of its bounds.
  static Rect drawnExtent(const View& view);
  /// What the view touches of its own picture, in its own coordinates: like drawnExtent(), but without its transform
  /// and without the composited views inside it, which are pictures of their own.
  static Rect pictureExtent(const View& view) { return extent(view, false); }

  /// Adds a rectangle of the view's own coordinates to the damage of the picture that it is drawn into.
  static void addDamage(View& view, Rect own);
  /// Adds the place where the view is drawn now to the damage of the picture around it. A composited view is in none.
  static void damageSuperview(View& view);
  /// Returns what has to be drawn again of a composited view since the last call, in its own coordinates.
  static Rect extractDamage(View& view) { return std::exchange(view.drawing_.damage, Rect{}); }

  /// Counts changes of a window: a renderer that saw this number before has nothing to draw (but Animator::isRunning()
  /// asks for frames as well).
  static std::uint64_t changeCount(const Window& window) { return window.changeCount_; }
  /// Sets what is called synchronously on each such change, which must not touch the views. An empty function removes
  /// it.
  static void setChangeCallback(Window& window, std::function<void()> callback);
  static void noteChange(Window& window);
  /// Notes a change in the window that the view is drawn in, if it is drawn.
  static void noteChangeIn(View& view);

 private:
  static Rect bodyExtent(const View& view);
  static Rect extent(const View& view, bool withComposited);
  static Rect toSuperview(const View& view, const Rect& own);
  static void addDamageOfSubview(View& superview, const Rect& rect);
};

template <typename Value>
void ViewDrawing::set(View& view, Value& member, Value value) {
  if (value != member) {
    member = std::move(value);
    setNeedsDisplay(view);
  }
}

template <typename Change>
void ViewDrawing::repaint(View& view, Change change) {
  const Rect before = pictureExtent(view);
  change();
  addDamage(view, before.united(pictureExtent(view)));
}

}  // namespace kesu
