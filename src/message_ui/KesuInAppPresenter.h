#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/graphics/Image.h>
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

#include "message_ui/CallToAction.h"
#include "message_ui/KesuPopupController.h"
#include "message_ui/MessageBars.h"
#include "message_ui/MessageCell.h"
#include "message_ui/MessageLayout.h"
#include "message_ui/TurnCounter.h"
#include "messaging/InAppModel.h"
#include "messaging/KesuImageCache.h"
#include "messaging/KesuInbox.h"
#include "messaging/MessageImageLoader.h"

namespace kesu {

/// Shows in-app messages: fetches headers, picks the first message, fetches its body, lays it out in a popup, and lets
/// the user page. Main thread, every operation.
///
/// One popup at a time. Whatever is closed, paged or presented again while replies, pictures and animations are under
/// way: what comes late is dropped, and never shown.
class KesuInAppPresenter final : public KesuPopoverDelegate, public TableViewDataSource {
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

  /// What a presenter works with; everything must outlive it.
  struct Services {
    Platform& platform;
    KesuInbox& inbox;
    MessageImageLoader& loader;
    KesuImageCache& (*cache)();  ///< Made when the first picture comes.
    KesuPost& post;
    KesuMetrics& metrics;
  };

  explicit KesuInAppPresenter(const Services& services);
  ~KesuInAppPresenter() override;

  KesuInAppPresenter(const KesuInAppPresenter&) = delete;
  KesuInAppPresenter& operator=(const KesuInAppPresenter&) = delete;

  /// [KesuInAppPresenter sharedInstance] The presenter of this process; null before it was made.
  static KesuInAppPresenter* sharedInstance();

  /// Who is told of pressed buttons and paging: the block, or without one the delegate (not owned; see
  /// forgetDelegate()). Each display names its own, so that none of an earlier one is told.
  void setCallbacks(CompletionBlock block, KesuInAppMessageDelegate* delegate);
  void setColors(const Colors& colors) { colors_ = colors; }
  /// Functions count from now on, also for what is shown; insets and text scale from the next present on.
  void setOptions(KesuInAppOptions options);

  /// A delegate that is destroyed is not told any more.
  void forgetDelegate(const KesuInAppMessageDelegate* delegate);

  /// [presentWithController:withType:] Begins to show messages. The controller is kept for its identity only. A popup
  /// that is still up goes at once.
  void presentWithController(ViewController* controller, KesuInAppMessageType type);

  /// [dismissViewController:] Closes what is shown, or gives up what is being fetched.
  void dismissViewController(bool animated);

  /// [didPopoverClosed] The user has closed the popup: everything is as before it was presented.
  void didPopoverClosed() override;

  /// [changeTemplate:] A button with tag 10 (previous) or 11 (next) was pressed.
  void changeTemplate(const View& button) { page(button.tag()); }
  /// [swipeGestureHandle:] Left is next, every other direction is previous.
  void swipeGestureHandle(SwipeDirection direction);
  /// [inAppButtonClicked:] An action button was pressed; its tag is the index.
  void inAppButtonClicked(const Button& button);
  /// [fetchUnreadMessageCount] Asks how many messages are new; unreadMessageCount() tells once the answer is there.
  void fetchUnreadMessageCount();
  /// Has the fonts loaded on the image worker, unless they are there.
  void loadFonts();
  /// [orientationChanged] Lays the popup out again for the screen's geometry.
  void orientationChanged();

  /// [screenBounds]
  static Rect screenBounds() { return {0.0, 0.0, 1920.0, 1080.0}; }
  /// [imageWithImage:scaledToWidth:] The picture at this width in pixels; itself when it is not wider. Slow: never on
  /// the main thread.
  static ImagePtr imageWithImage(const ImagePtr& image, int width);

  ViewController* rootViewController() const { return rootViewController_; }
  KesuInAppMessageType inappMessageType() const { return inappMessageType_; }
  const Array& responseValue() const { return responseValue_; }
  std::int64_t showIndex() const { return showIndex_; }
  const std::optional<InAppModel>& model() const { return model_; }
  bool isInAppShown() const { return isInAppShown_; }  ///< From present to close, fetching included.
  bool hasLostItsWindow() const;  ///< Something is up, but the host has destroyed the window, or never had one.
  bool textOverlapsImage() const { return textOverlapsImage_; }  ///< As the template says, also without a picture.
  std::int64_t unreadMessageCount() const { return unreadMessageCount_; }
  double contentHeight() const { return contentHeight_; }
  double visibleHeight() const { return visibleHeight_; }
  const Colors& colors() const { return colors_; }
  const CompletionBlock& completionBlock() const { return completionBlock_; }
  KesuInAppMessageDelegate* delegate() const { return delegate_; }
  KesuPopupController* popupController() const { return popupController_.get(); }  ///< Null while nothing is up.
  TableView* tableView() const { return tableView_.get(); }
  const MessageBars* bars() const { return bars_.get(); }
  Array& plistArray() { return plistArray_; }  ///< Kept: an auxiliary list that nothing fills.

  // The table has one row, which holds the message; it is made anew for each, so that nothing is reused.
  std::size_t numberOfRows() override { return 1; }
  double heightOfRow(std::size_t row) override;
  ViewPtr cellForRow(std::size_t row, double width) override { return loadCurrentTemplate(row, width); }

 private:
  void fetchUnreadMessage();
  void takeHeaders(const Object& headers);
  void doPopoverSetup();
  void updateModelAtCurrentIndex(std::function<void()> completion);
  void takeBody(const Object& body);
  void whenFontsReady(std::function<void()> step);
  void calculateHeights();
  void showPopover();
  void makeTable();
  void makeBars();
  void showBars();
  void showMessage();
  void fitHeight(double barHeightBefore);
  void page(std::int64_t tag);
  void didPage(std::int64_t tag);
  void focus(View* view);
  ViewPtr loadCurrentTemplate(std::size_t row, double width);
  void loadImage();
  void takeImage(const ImagePtr& original, const ImagePtr& shown, const std::string& url, const Turn& turn);
  void tearDown();
  void tell(const std::function<void()>& callback);
  void orGiveUp(const Turn& turn, const std::function<void()>& hook);

  bool hasMessage() const;
  const InAppTemplateData* templateData() const;
  Color canvasColor() const;
  MessageFonts fonts() const;
  Object headerValue(std::string_view key) const;

  Services services_;
  CallToAction callToAction_;
  KesuInAppOptions options_;
  EdgeInsets screenInsets_;  // Of what is shown.
  double textScale_ = 1.0;   // Of what is shown.
  Colors colors_;
  CompletionBlock completionBlock_;
  KesuInAppMessageDelegate* delegate_ = nullptr;

  ViewController* rootViewController_ = nullptr;
  KesuInAppMessageType inappMessageType_ = KesuInAppMessageType::Unread;
  Array responseValue_;
  std::int64_t showIndex_ = 0;
  std::optional<InAppModel> model_;
  bool isInAppShown_ = false;
  bool textOverlapsImage_ = false;
  std::int64_t unreadMessageCount_ = 0;
  Array plistArray_;

  MessageMeasures measures_;
  double contentHeight_ = 0.0;
  double visibleHeight_ = 0.0;
  Size arrivedImageSize_;  // Of a picture whose message did not say.
  ImagePtr image_;         // What the cell shows, once it is there.

  std::shared_ptr<KesuPopupController> popupController_;  // Shared with what closes it.
  std::shared_ptr<TableView> tableView_;
  std::unique_ptr<MessageBars> bars_;
  std::shared_ptr<MessageCell> cell_;

  TurnCounter turns_;  // Presented, closed, paged, or an answer taken: what was asked before does not count any more.
};

}  // namespace kesu
