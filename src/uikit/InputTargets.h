#pragma once

#include <kesu/ui/Window.h>

#include <memory>
#include <vector>

#include "uikit/GestureRecognizer.h"

namespace kesu {

// Finds what a press, a swipe or a tap on a modal view reaches: never hidden or transparent views, those without user
// interaction, or anything inside of these.

using RecognizerPtr = std::shared_ptr<GestureRecognizer>;

/// The frontmost modal view of the window that is not hidden, or null. It may be transparent.
View* frontmostModal(const Window& window);

/// All views that can be focused, in the order of the tree.
std::vector<ViewPtr> focusableIn(View& modal);

/// The frame of a view in its window, transforms left out.
Rect placeInWindow(const View& view);
std::vector<Rect> placesOf(const std::vector<ViewPtr>& views);

/// The tap recogniser that allows a button: outwards from the focused view, which may be null, to the modal one, else
/// the frontmost. Null without any.
RecognizerPtr recognizerOfPress(const View& modal, const View* focused, RemoteButton button);

/// The recogniser of a swipe, found the same way.
RecognizerPtr recognizerOfSwipe(const View& modal, const View* focused, SwipeDirection direction);

/// The frontmost view at a point of `view`'s coordinates that is visible and takes part in interaction, or null.
/// Transforms count: it is the view that the user sees there once all animations are over.
View* hitTest(View& view, Point point);

/// The view in a modal one at a point of the window, or null.
View* touchedView(View& modal, Point point);

/// What a tap reaches: a recogniser, or a view to be focused and activated, or neither.
struct Tapped {
  RecognizerPtr recognizer;
  ViewPtr view;
};

/// The innermost around the touched view that accepts a tap. Calls every delegate on the way out.
Tapped whatTapReaches(View& modal, View& touched);

}  // namespace kesu
