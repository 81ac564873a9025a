#pragma once

#include <kesu/graphics/Image.h>
#include <kesu/ui/ImageView.h>
#include <kesu/ui/View.h>
#include <kesu/ui/Window.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "message_ui/KesuPopupTheme.h"
#include "uikit/GestureRecognizer.h"

namespace kesu {

/// Receives the closing of a popup by the user. Main thread.
class KesuPopoverDelegate {
 public:
  virtual ~KesuPopoverDelegate() = default;

  /// Called after a dismissal from the backdrop or with Menu; the popup may still be sliding out. The controller may be
  /// destroyed inside. [didPopoverClosed]
  virtual void didPopoverClosed() {}
};

/// Shows a card over the application: a dimmed backdrop, and the card that slides up from the lower edge of the screen
/// and stays docked there. Knows nothing of messages. Main thread. Without a key window nothing is shown, and the
/// geometry is zero. A popup may be presented again after its dismissal; one that is sliding out when its controller is
/// destroyed continues to do so.
class KesuPopupController : public GestureRecognizerDelegate {
 public:
  using Completion = std::function<void(bool)>;

  /// Stacks the views, which have their final widths, in the card from the top. The snapshot is only kept. The delegate
  /// is not owned and may be null. [initWithContentView:withUnderlyingSnapshot:withDelegate:],
  /// [initWithContentViews:withUnderlyingSnapshot:withDelegate:]
  KesuPopupController(ViewPtr contentView, ImagePtr snapshot, KesuPopoverDelegate* delegate);
  KesuPopupController(std::vector<ViewPtr> contentViews, ImagePtr snapshot, KesuPopoverDelegate* delegate);
  ~KesuPopupController() override;

  KesuPopupController(const KesuPopupController&) = delete;
  KesuPopupController& operator=(const KesuPopupController&) = delete;

  /// Slides the card in within 0.3 s, or places it at once. `completion` (may be empty) is called at the end, always
  /// with true. Dismissals by the user are animated if this was. [presentPopupControllerAnimated:completion:]
  void presentPopupControllerAnimated(bool animated, Completion completion = {});

  /// Slides the card out and removes it from the window, unless it was presented again meanwhile.
  /// [dismissPopupControllerAnimated:completion:]
  void dismissPopupControllerAnimated(bool animated, Completion completion = {});

  /// Gives the first content view another height and lets the second one follow (0.1 s each); on the next turn of the
  /// main loop the card is docked again (0.5 s). Nothing happens when the height is the same. The card must have two
  /// views. [updatePopoverHeight:]
  void updatePopoverHeight(double height);

  /// Docks the card again after content views have changed their sizes by themselves: the second half of
  /// updatePopoverHeight().
  void redock();

  /// Follows a new geometry of the screen within 0.3 s. [orientationWillChange]
  void orientationWillChange();

  /// Closes the popup for the user; `recognizer` may be null. [handleBackgroundTapGesture:]
  /// Kept: with the default theme the dismissal runs twice, which has no visible effect.
  void handleBackgroundTapGesture(GestureRecognizer* recognizer);
  /// Returns true for everything but the card and what lies in it. [gestureRecognizer:shouldReceiveTouch:]
  bool shouldReceiveTouch(GestureRecognizer& recognizer, View& touched) override;

  /// Sets the card's looks by the theme; each presentation calls it. [applyTheme]
  void applyTheme();
  /// Stacks the visible content views and sizes the card; each presentation calls it. [calculateVisibleContentSize]
  void calculateVisibleContentSize();

  View& popupView() { return *popupView_; }      ///< The card.
  View& contentView() { return *contentView_; }  ///< The backdrop, which holds the card.
  void setDelegate(KesuPopoverDelegate* delegate) { delegate_ = delegate; }
  Window* applicationWindow() const;  ///< The application's key window, or null.

  /// Sets how far from the screen's edges the card stays (overscan), in points; 0 by default.
  void setScreenInsets(const EdgeInsets& insets) { screenInsets_ = insets; }

  /// Sets what is called once per presentation, when the popup has left the window; also after the controller was
  /// destroyed.
  void setRemovalHandler(std::function<void()> handler) { removed_ = std::move(handler); }

  // Owed to the agreed interface; no caller inside the library.

  void orientationChanged() {}   ///< Does nothing. [orientationChanged]
  void removeNotifications() {}  ///< Does nothing: there are none. [removeNotifications]
  void simulateWideTap() { handleBackgroundTapGesture(nullptr); }  ///< [simulateWideTap:]
  KesuPopupTheme& theme() { return theme_; }
  void setTheme(const KesuPopupTheme& theme) { theme_ = theme; }
  const std::vector<ViewPtr>& views() const { return views_; }
  TapGestureRecognizer& gesture() { return *gesture_; }
  SwipeGestureRecognizer* swipeGesture() { return nullptr; }  ///< Kept: declared and never made.
  const ImageView* imageView() const { return nullptr; }      ///< Kept: declared and not used.
  const ImagePtr& viewImage() const { return viewImage_; }
  bool dismissAnimated() const { return dismissAnimated_; }
  void setDismissAnimated(bool animated) { dismissAnimated_ = animated; }
  KesuPopoverDelegate* delegate() const { return delegate_; }
  void setApplicationWindow(Window* /*window*/) {}  ///< Kept: what is set is ignored.

 private:
  /// Counts presentations and dismissals: an animation that ends late must not undo what came after it. Shared with
  /// animations, which may outlive the controller.
  struct Presentation {
    std::uint64_t number = 0;
    bool isUp = false;
  };

  void setUpPopoverContent();
  void addPopupContents();
  void dismissForUser();
  Point dockedCenter() const;
  Point hiddenCenter() const;

  ViewPtr popupView_;
  ViewPtr contentView_;
  std::shared_ptr<TapGestureRecognizer> gesture_;
  std::vector<ViewPtr> views_;
  ImagePtr viewImage_;
  bool dismissAnimated_ = false;
  KesuPopupTheme theme_;
  KesuPopoverDelegate* delegate_ = nullptr;
  EdgeInsets screenInsets_;
  std::function<void()> removed_;
  std::shared_ptr<Presentation> presentation_ = std::make_shared<Presentation>();
};

}  // namespace kesu
