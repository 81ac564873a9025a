#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/message_ui/KesuInAppMessageDelegate.h>
#include <kesu/message_ui/KesuInAppOptions.h>
#include <kesu/messaging/KesuInAppMessageType.h>
#include <kesu/messaging/KesuInAppStatus.h>
#include <kesu/platform/Platform.h>
#include <kesu/ui/Button.h>
#include <kesu/ui/TableView.h>
#include <kesu/ui/ViewController.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "message_ui/CallToAction.h"
#include "message_ui/KesuPopupController.h"
#include "message_ui/MessagePicture.h"
#include "message_ui/MessagePopup.h"
#include "message_ui/MessageSession.h"
#include "messaging/KesuImageCache.h"
#include "messaging/KesuInbox.h"
#include "messaging/MessageImageLoader.h"

namespace kesu {

/// Shows in-app messages: connects the session, which fetches messages, with the popup that shows them, with what
/// buttons do, and with the host's functions. Main thread.
///
/// One popup at a time. Whatever is closed, paged or presented again while replies, pictures and animations are under
/// way: what arrives late is dropped, and never shown.
class KesuInAppPresenter final : public KesuPopoverDelegate {
 public:
  using CompletionBlock = std::function<void(const KesuInAppStatus&)>;

  /// The colours of the paging controls; what is unset has its default. The colours of buttons' faces and of the
  /// counter are kept only: arrows are clear, and the counter has the colour of the arrows.
  struct Colors {
    std::optional<Color> buttonTextColor;
    std::optional<Color> buttonBgColor;
    std::optional<Color> messageNavigationBarColor;
    std::optional<Color> messageTextColor;
  };

  /// The services of a presenter; they must outlive it.
  struct Services {
    Platform& platform;
    KesuInbox& inbox;
    MessageImageLoader& loader;
    KesuImageCache& (*cache)();  ///< Called when the first picture arrives.
    KesuPost& post;
    KesuMetrics& metrics;
  };

  explicit KesuInAppPresenter(const Services& services);
  ~KesuInAppPresenter() override;

  KesuInAppPresenter(const KesuInAppPresenter&) = delete;
  KesuInAppPresenter& operator=(const KesuInAppPresenter&) = delete;

  /// Returns the presenter of this process; null before it was made. [KesuInAppPresenter sharedInstance]
  static KesuInAppPresenter* sharedInstance();

  /// Sets what is called for pressed buttons and paging: the block, or without one the delegate (not owned; see
  /// forgetDelegate()). Each display sets its own, so that none of an earlier one is called.
  void setCallbacks(CompletionBlock block, KesuInAppMessageDelegate* delegate);
  void setColors(const Colors& colors) { colors_ = colors; }
  /// Sets the host's options: functions apply at once, also to what is shown; insets and text scale from the next
  /// presentation on.
  void setOptions(KesuInAppOptions options);
  /// Forgets a delegate that is being destroyed.
  void forgetDelegate(const KesuInAppMessageDelegate* delegate);

  /// Begins to show messages. The controller is kept for its identity only. A popup that is still up is closed at once.
  /// [presentWithController:withType:]
  void presentWithController(ViewController* controller, KesuInAppMessageType type);
  /// Closes what is shown, or drops what is being fetched. [dismissViewController:]
  void dismissViewController(bool animated);
  /// Resets everything to what it was before the presentation, once the user has closed the popup. [didPopoverClosed]
  void didPopoverClosed() override;
  /// Loads the fonts on the image worker, unless they are loaded.
  void loadFonts();

  /// From the presentation to the close, fetching included.
  bool isInAppShown() const { return session_.isOpen(); }
  /// Returns whether a popup is up whose window the host has destroyed, or that never had one.
  bool hasLostItsWindow() const;

  // Owed to the agreed interface; no caller inside the library beyond the popup's own actions.

  /// Pages: a button with tag 10 (previous) or 11 (next) was pressed. [changeTemplate:]
  void changeTemplate(const View& button) { page(button.tag()); }
  /// Pages: left is next, every other direction is previous. [swipeGestureHandle:]
  void swipeGestureHandle(SwipeDirection direction);
  /// Performs the action of a button; its tag is the index. [inAppButtonClicked:]
  void inAppButtonClicked(const Button& button);
  /// Fetches how many messages are new; unreadMessageCount() returns it once the reply has arrived.
  /// [fetchUnreadMessageCount]
  void fetchUnreadMessageCount() { session_.fetchUnreadMessageCount(); }
  /// Lays the popup out again for the screen's geometry. [orientationChanged]
  void orientationChanged();
  /// [screenBounds]
  static Rect screenBounds() { return kScreenBounds; }

  ViewController* rootViewController() const { return rootViewController_; }
  KesuInAppMessageType inappMessageType() const { return session_.type(); }
  const Array& responseValue() const { return session_.headers(); }
  std::int64_t showIndex() const { return session_.index(); }
  const InAppModel* model() const { return session_.model().get(); }  ///< Null for none.
  std::int64_t unreadMessageCount() const { return session_.unreadMessageCount(); }
  const Colors& colors() const { return colors_; }
  const CompletionBlock& completionBlock() const { return completionBlock_; }
  KesuInAppMessageDelegate* delegate() const { return delegate_; }
  Array& plistArray() { return plistArray_; }  ///< Kept: an auxiliary list that nothing fills.

  // Of the popup; 0, false or null while none is up.
  bool textOverlapsImage() const { return popup_ != nullptr && popup_->textOverlapsImage(); }
  double contentHeight() const { return popup_ != nullptr ? popup_->contentHeight() : 0.0; }
  double visibleHeight() const { return popup_ != nullptr ? popup_->visibleHeight() : 0.0; }
  KesuPopupController* popupController() const { return popup_ != nullptr ? popup_->controller().get() : nullptr; }
  TableView* tableView() const { return popup_ != nullptr ? &popup_->table() : nullptr; }
  const MessageBars* bars() const { return popup_ != nullptr ? &popup_->bars() : nullptr; }

 private:
  void showPopover();
  void page(std::int64_t tag);
  void didPage();
  void reportPaging();
  void loadPicture();
  void close();
  MessageContent content() const;
  static void call(const std::function<void()>& hook);

  Platform& platform_;
  MessageSession session_;
  MessagePicture picture_;
  CallToAction callToAction_;
  std::shared_ptr<MessagePopup> popup_;  // Null while none is up. Owned here; what is called later watches it.
  MessageLooks looks_;                   // Of what is shown.
  std::vector<KesuInAppStatus> paged_;   // Steps that the host has not been told of: the last one's body is awaited.
  KesuInAppOptions options_;
  Colors colors_;
  CompletionBlock completionBlock_;
  KesuInAppMessageDelegate* delegate_ = nullptr;
  ViewController* rootViewController_ = nullptr;
  Array plistArray_;
};

}  // namespace kesu
