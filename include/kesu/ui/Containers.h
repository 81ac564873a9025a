#pragma once

#include <kesu/Export.h>
#include <kesu/ui/View.h>
#include <kesu/ui/ViewController.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kesu {

/// A row of screens of which one is selected. Main thread. Does not own its screens, which must outlive it.
class KESU_API TabBarController : public ViewController {
 public:
  ~TabBarController() override;

  /// Sets the screens; the first is selected.
  void setViewControllers(std::vector<ViewController*> controllers);

  /// Selects a screen: the one before disappears, the new one appears, if the container is visible. Others are ignored.
  void setSelectedIndex(std::size_t index, bool animated = false);

  std::size_t selectedIndex() const { return selected_; }
  ViewController* selectedViewController() const;
  ViewController* visibleChild() override { return selectedViewController(); }

 protected:
  void viewDidAppear(bool animated) override;
  void viewDidDisappear(bool animated) override;

 private:
  std::vector<ViewController*> controllers_;
  std::size_t selected_ = 0;
};

/// A stack of screens of which the last is visible. Main thread. Does not own its screens, which must outlive it.
class KESU_API NavigationController : public ViewController {
 public:
  ~NavigationController() override;

  /// Puts a screen on the stack: the one below disappears, the new one appears, if the container is visible.
  void push(ViewController& controller, bool animated = false);

  /// Takes the last screen off the stack, but never the first. Returns it, or null.
  ViewController* pop(bool animated = false);

  /// What is shown over the container, else over its last screen, else that screen, else null.
  ViewController* visibleViewController() const;
  ViewController* visibleChild() override { return visibleViewController(); }

 protected:
  void viewDidAppear(bool animated) override;
  void viewDidDisappear(bool animated) override;

 private:
  ViewController* lastOfStack() const { return stack_.empty() ? nullptr : stack_.back(); }

  std::vector<ViewController*> stack_;
};

/// The window that shows the host's screens and the library's popup. Main thread. It is 1920 x 1080 points.
///
/// A Window may live anywhere (it is not owned by its superview, having none). It owns the views in it. When the
/// key window goes there is none any more; a popup that was in it is gone, and messages may be shown again. It may go
/// in what a press, a swipe or a tap leads to.
class KESU_API Window : public View {
 public:
  Window();
  ~Window() override;

  /// Names the screen that the window begins with; not owned. The one before disappears, the new one appears, if this
  /// is the key window.
  void setRootViewController(ViewController* root);
  ViewController* rootViewController() const { return root_; }

  /// Makes this the window that the user sees: Application::keyWindow().
  void makeKeyAndVisible();

  Window* window() override { return this; }

  /// Counts what makes the next frame differ from the one before: a renderer that saw this number before has nothing to
  /// draw (but Animator::isRunning() asks for frames as well).
  std::uint64_t changeCount() const { return changeCount_; }
  /// Called after each such change, in the midst of it: it must not touch the views, only ask for a frame. An empty
  /// function removes it.
  void setChangeCallback(std::function<void()> callback) { changeCallback_ = std::move(callback); }

  /// The frontmost modal view in the window that is not hidden, or null. It is modal as long as it is in the window, be
  /// it transparent.
  View* modalView() const;

  /// The view that presses go to, or null: only what lies in the modal view is ever focused. It is visible, has a size,
  /// and takes part in interaction.
  View* focusedView() const;

  /// Focuses a view that can be; null lets the window choose: the first one in reading order. Nothing happens for
  /// others.
  void setFocusedView(View* view);

  /// Lets the focus follow what came, went, was hidden or disabled, which moves it to what is next in reading order.
  /// Done before and after everything below and in focusedView(); whoever draws frames does it before each.
  void updateFocus();

  // What a host's input does to the views. Each returns whether it was taken, which it is while a modal view is up;
  // only the end of a press that began before that is left to whom it began with.

  /// Arrows go to the focused view, then move the focus, again for each Began of a held button. Select is for the
  /// focused view: pressed, let go, activated. Menu and PlayPause, let go, reach the one tap recogniser that allows
  /// them: of the focused view and what it lies in first, else the frontmost in the modal view.
  bool press(RemoteButton button, PressPhase phase);
  /// Reaches one swipe recogniser as Menu does a tap recogniser. A swipe that none waits for moves as its arrow does.
  bool swipe(SwipeDirection direction);
  /// Reaches the innermost tap recogniser around the touched view whose delegate allows it; a view that can be focused
  /// in front of that is focused and activated instead.
  bool tap(Point point);
  /// The input goes elsewhere: what is pressed is cancelled.
  void cancelPresses();

 private:
  friend class View;
  friend class Animator;
  struct Input;

  void resignKey();
  void didChange();
  void focus(const ViewPtr& wanted);
  void beginPress(RemoteButton button);
  void endPress(RemoteButton button);
  void cancelSelect();
  void moveByArrow(RemoteButton arrow);

  ViewController* root_ = nullptr;
  std::uint64_t changeCount_ = 0;
  std::function<void()> changeCallback_;
  std::shared_ptr<Input> input_;
};

}  // namespace kesu
