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

/// Told when the user has closed a popup. Main thread.
class KesuPopoverDelegate {
 public:
  virtual ~KesuPopoverDelegate() = default;

  /// After a dismissal from the backdrop or with Menu; the popup may still be sliding out. The controller may be
  /// dropped here.
  virtual void didPopoverClosed() {}
};

/// Shows a card over the application: a dimmed backdrop, and the card that slides up from the lower edge of the screen
/// and stays docked there. Knows nothing of messages. Main thread. Without a key window nothing is shown, and the
/// geometry is zero. A popup may be presented again after its dismissal; what is still sliding out when the controller
/// goes, slides out by itself.
class KesuPopupController : public GestureRecognizerDelegate {
 public:
  using Completion = std::function<void(bool)>;

  /// [initWithContentView:withUnderlyingSnapshot:withDelegate:] and
  /// [initWithContentViews:withUnderlyingSnapshot:withDelegate:] The views, with their final widths, are stacked in the
  /// card from the top. The snapshot is only kept. The delegate is not owned and may be null.
  KesuPopupController(ViewPtr contentView, ImagePtr snapshot, KesuPopoverDelegate* delegate);
  KesuPopupController(std::vector<ViewPtr> contentViews, ImagePtr snapshot, KesuPopoverDelegate* delegate);
  ~KesuPopupController() override;

  KesuPopupController(const KesuPopupController&) = delete;
  KesuPopupController& operator=(const KesuPopupController&) = delete;

  /// [presentPopupControllerAnimated:completion:] Slides the card in, 0.3 s or at once. `completion` (may be empty) is
  /// called at the end, always with true. The animation that comes with dismissals by the user is the same.
  void presentPopupControllerAnimated(bool animated, Completion completion = {});

  /// [dismissPopupControllerAnimated:completion:] Slides the card out and takes it out of the window, unless it was
  /// presented again meanwhile.
  void dismissPopupControllerAnimated(bool animated, Completion completion = {});

  /// [updatePopoverHeight:] Gives the first content view another height and lets the second one follow (0.1 s each);
  /// with the main loop's next turn the card is docked again (0.5 s). Nothing happens when the height is that already.
  /// The card must have two views.
  void updatePopoverHeight(double height);

  /// Docks the card again after content views have changed their sizes by themselves: the second half of
  /// updatePopoverHeight().
  void redock();

  /// [orientationWillChange] Follows a new geometry of the screen, 0.3 s.
  void orientationWillChange();
  /// [orientationChanged] Does nothing. Kept: part of the interface.
  void orientationChanged() {}

  /// [handleBackgroundTapGesture:] Closes the popup for the user; `recognizer` may be null.
  /// Kept: with the default theme the dismissal runs twice, which shows nowhere.
  void handleBackgroundTapGesture(GestureRecognizer* recognizer);
  /// [simulateWideTap:]
  void simulateWideTap() { handleBackgroundTapGesture(nullptr); }
  /// [gestureRecognizer:shouldReceiveTouch:] Everything but the card and what lies in it.
  bool shouldReceiveTouch(GestureRecognizer& recognizer, View& touched) override;

  /// [applyTheme] and [calculateVisibleContentSize] Run by each presentation: the card's looks by the theme; the
  /// visible content views one below the other, and the card around them.
  void applyTheme();
  void calculateVisibleContentSize();
  /// [removeNotifications] Does nothing. Kept: part of the interface.
  void removeNotifications() {}

  KesuPopupTheme& theme() { return theme_; }
  void setTheme(const KesuPopupTheme& theme) { theme_ = theme; }
  View& popupView() { return *popupView_; }      ///< The card.
  View& contentView() { return *contentView_; }  ///< The backdrop, which holds the card.
  const std::vector<ViewPtr>& views() const { return views_; }
  TapGestureRecognizer& gesture() { return *gesture_; }
  SwipeGestureRecognizer* swipeGesture() { return nullptr; }  ///< Kept: declared and never made.
  const ImageView* imageView() const { return nullptr; }      ///< Kept: declared and not used.
  const ImagePtr& viewImage() const { return viewImage_; }
  bool dismissAnimated() const { return dismissAnimated_; }
  void setDismissAnimated(bool animated) { dismissAnimated_ = animated; }
  KesuPopoverDelegate* delegate() const { return delegate_; }
  void setDelegate(KesuPopoverDelegate* delegate) { delegate_ = delegate; }

  /// The application's key window, or null; what is set is ignored.
  Window* applicationWindow() const;
  void setApplicationWindow(Window* /*window*/) {}

  /// How far from the screen's edges the card stays (overscan); 0 unless a host says so.
  void setScreenInsets(const EdgeInsets& insets) { screenInsets_ = insets; }

  /// Called once a presentation, when the popup has left the window; also after the controller has gone.
  void setRemovalHandler(std::function<void()> handler) { removed_ = std::move(handler); }

 private:
  /// Which presentation or dismissal is the latest: an animation that ends late must not undo what came after it.
  struct Turn {
    std::uint64_t number = 0;
    bool isPresented = false;
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
  std::shared_ptr<Turn> turn_ = std::make_shared<Turn>();
};

}  // namespace kesu
