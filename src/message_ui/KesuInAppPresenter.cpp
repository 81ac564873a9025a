#include "message_ui/KesuInAppPresenter.h"

#include <kesu/ui/Application.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "foundation/Afterwards.h"
#include "foundation/Objects.h"
#include "graphics/ImageScaling.h"
#include "graphics/TextLayout.h"
#include "message_ui/MessageLog.h"
#include "message_ui/MessagePaging.h"
#include "message_ui/SensibleOptions.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr int kWidestPicture = 1160;  // The card's width on the finest screens, in pixels.
constexpr std::int64_t kStatusOtherMessage = 3;

KesuInAppPresenter* sharedPresenter = nullptr;

}  // namespace

KesuInAppPresenter::KesuInAppPresenter(const Services& services)
    : services_(services), callToAction_(services.platform, services.post, services.metrics) {
  sharedPresenter = this;
}

KesuInAppPresenter::~KesuInAppPresenter() {
  sharedPresenter = nullptr;
  if (tableView_ != nullptr) {
    tableView_->forgetDataSource();
  }
  if (popupController_ != nullptr) {
    popupController_->contentView().removeFromSuperview();
  }
}

KesuInAppPresenter* KesuInAppPresenter::sharedInstance() {
  return sharedPresenter;
}

void KesuInAppPresenter::setCallbacks(CompletionBlock block, KesuInAppMessageDelegate* delegate) {
  completionBlock_ = std::move(block);
  delegate_ = delegate;
}

void KesuInAppPresenter::setOptions(KesuInAppOptions options) {
  options_ = sensibleOptions(std::move(options));
}

void KesuInAppPresenter::forgetDelegate(const KesuInAppMessageDelegate* delegate) {
  if (delegate_ == delegate) {
    delegate_ = nullptr;
  }
}

// A copy runs: the host may set other options meanwhile.
void KesuInAppPresenter::tell(const std::function<void()>& callback) {
  if (const auto copy = callback) {
    copy();
  }
}

// A show whose hook throws is over: nothing else would end it, and none could begin.
void KesuInAppPresenter::orGiveUp(const Turn& turn, const std::function<void()>& hook) {
  try {
    hook();
  } catch (...) {
    if (turn.isCurrent()) {
      tearDown();
    }
    throw;
  }
}

void KesuInAppPresenter::presentWithController(ViewController* controller, KesuInAppMessageType type) {
  if (popupController_ != nullptr) {
    dismissViewController(false);
  }
  rootViewController_ = controller;
  textOverlapsImage_ = false;
  unreadMessageCount_ = 0;
  inappMessageType_ = type;
  screenInsets_ = options_.screenInsets;
  textScale_ = options_.textScale;
  isInAppShown_ = true;
  model_.reset();
  responseValue_.clear();
  showIndex_ = -1;
  fetchUnreadMessage();
}

void KesuInAppPresenter::loadFonts() {
  if (!areFontsReady()) {
    services_.platform.imageWorker.post([] { prepareFonts(); });
  }
}

// The fonts are loaded while the service is thinking.
void KesuInAppPresenter::fetchUnreadMessage() {
  loadFonts();
  services_.inbox.kesu_getMessageHeadersForType(inappMessageType_,
                                                [this, turn = turns_.begin()](const Object& headers) {
                                                  if (turn.isCurrent()) {
                                                    takeHeaders(headers);
                                                  }
                                                });
}

void KesuInAppPresenter::takeHeaders(const Object& headers) {
  const Turn turn = turns_.begin();  // A second answer does not count.
  const Array* array = headers ? headers->array() : nullptr;
  const auto mayShow = options_.shouldShowMessage;
  bool isRefused = false;
  for (const Value& header : array != nullptr ? *array : Array()) {
    if (header.dictionary() == nullptr) {
      continue;
    }
    bool isAllowed = true;
    orGiveUp(turn, [&] { isAllowed = !mayShow || mayShow(*header.dictionary()); });
    if (!turn.isCurrent()) {
      return;  // The host has closed or presented inside its hook.
    }
    isRefused = isRefused || !isAllowed;
    if (isAllowed) {
      responseValue_.push_back(header);
    }
  }
  if (isRefused && responseValue_.empty()) {
    tearDown();
    return;
  }
  doPopoverSetup();
}

void KesuInAppPresenter::doPopoverSetup() {
  showIndex_ = firstMessageIndex(responseValue_);
  updateModelAtCurrentIndex([this] {
    calculateHeights();
    showPopover();
  });
}

void KesuInAppPresenter::fetchUnreadMessageCount() {
  services_.inbox.kesu_countNewUnFetched([this, turn = turns_.current()](std::int64_t count) {
    if (turn.isAlive()) {
      unreadMessageCount_ = count;
    }
  });
}

Object KesuInAppPresenter::headerValue(std::string_view key) const {
  const auto index = static_cast<std::size_t>(showIndex_);
  const Dictionary* header = index < responseValue_.size() ? responseValue_[index].dictionary() : nullptr;
  const Value* value = header != nullptr ? header->find(key) : nullptr;
  return value != nullptr ? Object(*value) : Object(nil);
}

// Kept: a message whose body cannot be had leaves the one before in its place.
void KesuInAppPresenter::updateModelAtCurrentIndex(std::function<void()> completion) {
  const Turn turn = turns_.begin();
  auto next = [this, completion = std::move(completion)](const Turn& asked) {
    whenFontsReady([asked, completion] {
      if (asked.isCurrent()) {
        completion();
      }
    });
  };
  if (responseValue_.empty()) {
    next(turn);
    return;
  }
  services_.inbox.kesu_getMessageWithContentID(headerValue(kCampaignIdKey), headerValue(kMessageIdKey),
                                               [this, turn, next = std::move(next)](const Object& body) {
                                                 if (turn.isCurrent()) {
                                                   const Turn taken = turns_.begin();
                                                   takeBody(body);
                                                   next(taken);
                                                 }
                                               });
}

void KesuInAppPresenter::takeBody(const Object& body) {
  const Dictionary* dictionary = body ? body->dictionary() : nullptr;
  if (dictionary == nullptr) {
    return;
  }
  logMessageContent(*dictionary);
  const Value* payload = dictionary->find(kPayloadKey);
  const Dictionary* content = payload != nullptr ? payload->dictionary() : nullptr;
  model_ = InAppModel(content != nullptr ? *content : Dictionary(), false);
  arrivedImageSize_ = {};
  image_ = nullptr;
}

// Always a later turn of the main loop: it may be a button of the bars themselves that asked.
void KesuInAppPresenter::whenFontsReady(std::function<void()> step) {
  MainLoop& loop = services_.platform.mainLoop;
  if (areFontsReady()) {
    loop.post(std::move(step));
    return;
  }
  services_.platform.imageWorker.post([&loop, step = std::move(step)]() mutable {
    prepareFonts();
    loop.post(std::move(step));
  });
}

bool KesuInAppPresenter::hasMessage() const {
  const InAppTemplateData* data = templateData();
  return model_ && (!model_->title.empty() || !model_->msg.empty() ||
                    (data != nullptr && (data->hasPicture() || data->buttonCount() > 0)));
}

const InAppTemplateData* KesuInAppPresenter::templateData() const {
  return model_ && model_->templateData ? &*model_->templateData : nullptr;
}

Color KesuInAppPresenter::canvasColor() const {
  const InAppTemplateData* data = templateData();
  return data != nullptr && hasMessage() ? data->canvasColor().value_or(Color::white()) : Color::white();
}

MessageFonts KesuInAppPresenter::fonts() const {
  MessageFonts fonts;
  fonts.title.size *= textScale_;
  fonts.message.size *= textScale_;
  return fonts;
}

void KesuInAppPresenter::calculateHeights() {
  const InAppTemplateData* data = templateData();
  measures_ = {};
  if (data != nullptr && data->hasPicture()) {
    const double declared = clippedSizeFromImageSize(data->imageSize(), kCardWidth).height;
    const double arrived = clippedSizeFromImageSize(arrivedImageSize_, kCardWidth).height;
    measures_.imageHeight = declared > 0.0 ? declared : arrived;
  }
  if (model_ && !model_->title.empty()) {
    measures_.titleHeight = titleHeight(model_->title, fonts().title);
  }
  if (model_ && !model_->msg.empty()) {
    measures_.messageHeight = heightForText(model_->msg, fonts().message, kCardTextWidth);
  }
  textOverlapsImage_ = data != nullptr && data->textOverlapsImage();
  // A title with nothing to lie over needs room of its own.
  measures_.textOverlapsImage = textOverlapsImage_ && measures_.imageHeight > 0.0;
  contentHeight_ = calculateContentHeight(measures_);
  const double room = screenBounds().height - screenInsets_.top - screenInsets_.bottom;
  visibleHeight_ = calculateVisibleHeight(room, data != nullptr && data->buttonCount() > 0);
}

double KesuInAppPresenter::heightOfRow(std::size_t /*row*/) {
  return contentHeight_;
}

ViewPtr KesuInAppPresenter::loadCurrentTemplate(std::size_t /*row*/, double /*width*/) {
  cell_ = nullptr;
  if (!hasMessage()) {
    return makeEmptyCell(contentHeight_);
  }
  cell_ = std::make_shared<MessageCell>(*model_, measures_, fonts(), canvasColor());
  cell_->showImage(image_, false);
  return cell_;
}

void KesuInAppPresenter::showPopover() {
  const Turn turn = turns_.current();
  orGiveUp(turn, [this] { tell(options_.willPresent); });
  if (!turn.isCurrent()) {
    return;
  }
  if (Application::shared().keyWindow() == nullptr) {
    KESU_LOG(2, "There is no key window to show messages in: make a kesu::Overlay first.");
  }
  makeTable();
  makeBars();
  popupController_ =
      std::make_shared<KesuPopupController>(std::vector<ViewPtr>{tableView_, bars_->bottomBarView()}, nullptr, this);
  popupController_->setScreenInsets(screenInsets_);
  popupController_->setRemovalHandler([this, turn] {
    if (turn.isAlive()) {
      tell(options_.didDismiss);
    }
  });
  tableView_->setDataSource(this);
  showMessage();
  popupController_->presentPopupControllerAnimated(true, [this, turn, table = std::weak_ptr(tableView_)](bool) {
    if (turn.isAlive() && tableView_ != nullptr && tableView_ == table.lock()) {
      tell(options_.didPresent);
    }
  });
  focus(bars_->firstFocus());
  loadImage();
}

void KesuInAppPresenter::makeTable() {
  tableView_ = std::make_shared<TableView>(Rect{0.0, 0.0, kCardWidth, virtualHeight(contentHeight_, visibleHeight_)});
  for (const SwipeDirection direction : {SwipeDirection::Left, SwipeDirection::Right}) {
    GestureRecognizer::add(
        *tableView_,
        std::make_shared<SwipeGestureRecognizer>(
            direction, [this, direction, table = std::weak_ptr<TableView>(tableView_), turn = turns_.current()](auto&) {
              if (turn.isAlive() && tableView_ != nullptr && tableView_ == table.lock()) {
                swipeGestureHandle(direction);
              }
            }));
  }
}

void KesuInAppPresenter::makeBars() {
  bars_ = std::make_unique<MessageBars>([this](Button& button) { inAppButtonClicked(button); },
                                        [this](Button& button) { changeTemplate(button); });
  showBars();
  bars_->bottomBarView()->setFrame(
      bars_->bottomBarView()->frame().movedBy(0.0, tableView_->bounds().height + kCardGap));
}

void KesuInAppPresenter::showBars() {
  BarContent content;
  content.data = templateData();
  content.index = showIndex_;
  content.count = responseValue_.size();
  content.canvas = canvasColor();
  content.text = colors_.buttonTextColor;
  content.bar = colors_.messageNavigationBarColor;
  bars_->show(content);
}

void KesuInAppPresenter::showMessage() {
  tableView_->setBackgroundColor(canvasColor());
  tableView_->reloadData();
  popupController_->popupView().setAccessibility(
      {AccessibilityInfo::Role::Dialog, hasMessage() ? model_->title : std::string(), ""});
}

// Without a view of its own to focus a message may still be scrolled.
void KesuInAppPresenter::focus(View* view) {
  if (Window* window = popupController_->applicationWindow()) {
    window->setFocusedView(view != nullptr ? view : tableView_.get());
  }
}

bool KesuInAppPresenter::hasLostItsWindow() const {
  return popupController_ != nullptr && popupController_->contentView().superview() == nullptr;
}

void KesuInAppPresenter::fitHeight(double barHeightBefore) {
  const double height = virtualHeight(contentHeight_, visibleHeight_);
  if (tableView_->bounds().height != height) {
    popupController_->updatePopoverHeight(height);
  } else if (bars_->bottomBarView()->bounds().height != barHeightBefore) {
    popupController_->redock();
  }
}

void KesuInAppPresenter::swipeGestureHandle(SwipeDirection direction) {
  page(direction == SwipeDirection::Left ? kNextTag : kPreviousTag);
}

void KesuInAppPresenter::page(std::int64_t tag) {
  const std::int64_t index = pagedIndex(tag, showIndex_, responseValue_.size());
  if (popupController_ == nullptr || index == showIndex_) {
    return;
  }
  showIndex_ = index;
  updateModelAtCurrentIndex([this, tag] { didPage(tag); });
}

void KesuInAppPresenter::didPage(std::int64_t tag) {
  if (popupController_ == nullptr) {
    return;
  }
  calculateHeights();
  const double barHeight = bars_->bottomBarView()->bounds().height;
  const View* focused = nullptr;
  if (const Window* window = popupController_->applicationWindow()) {
    focused = window->focusedView();
  }
  const bool wasReading = focused == tableView_.get();
  showBars();
  fitHeight(barHeight);
  showMessage();
  tableView_->scrollToRow(0, true);
  focus(wasReading && tableView_->canBecomeFocused() ? tableView_.get() : bars_->focusAfter(tag));
  loadImage();
  if (const CompletionBlock block = completionBlock_) {
    KesuInAppStatus status;
    status.buttonIndex = tag;
    status.messageID = textOf(headerValue(kMessageIdKey));
    status.campaignID = textOf(headerValue(kCampaignIdKey));
    status.status = kStatusOtherMessage;
    block(status);
  }
}

ImagePtr KesuInAppPresenter::imageWithImage(const ImagePtr& image, int width) {
  if (image == nullptr || image->width() <= width) {
    return image;
  }
  const double height = static_cast<double>(image->height()) * width / image->width();
  return scaledImage(*image, width, std::max(1, static_cast<int>(std::lround(height))));
}

// Handlers come on the image worker: the picture is made small there, and shown on the main thread.
void KesuInAppPresenter::loadImage() {
  const InAppTemplateData* data = templateData();
  if (data == nullptr || !data->hasPicture() || image_ != nullptr) {
    return;
  }
  MainLoop& loop = services_.platform.mainLoop;
  auto handler = [this, &loop, copy = *data, turn = turns_.current()](const ImagePtr& downloaded) {
    const ImagePtr shown = imageWithImage(downloaded != nullptr ? downloaded : copy.base64Image(), kWidestPicture);
    loop.post([this, turn, downloaded, shown, url = copy.imageURL()] {
      if (turn.isAlive()) {
        takeImage(downloaded, shown, url, turn);
      }
    });
  };
  if (data->imageURL().empty()) {
    services_.platform.imageWorker.post([handler = std::move(handler)] { handler(nullptr); });
  } else {
    data->downloadImageWithCompletionHandler(services_.loader, std::move(handler));
  }
}

void KesuInAppPresenter::takeImage(const ImagePtr& original, const ImagePtr& shown, const std::string& url,
                                   const Turn& turn) {
  if (original != nullptr) {
    services_.cache().cacheImage(original, url);
  }
  if (shown == nullptr || !turn.isCurrent() || popupController_ == nullptr) {
    return;
  }
  image_ = shown;
  if (measures_.imageHeight <= 0.0) {  // Its message did not say how large it is: the card grows.
    arrivedImageSize_ = {static_cast<double>(shown->width()), static_cast<double>(shown->height())};
    calculateHeights();
    fitHeight(bars_->bottomBarView()->bounds().height);
    tableView_->reloadData();
  } else if (cell_ != nullptr) {
    cell_->showImage(shown, true);
  }
}

// All that is needed is taken along: by the time it is needed the popup may show something else.
void KesuInAppPresenter::inAppButtonClicked(const Button& button) {
  const InAppTemplateData* data = templateData();
  ButtonPress press;
  press.tag = button.tag();
  press.title = button.title();
  if (data != nullptr && press.tag >= 0 && static_cast<std::size_t>(press.tag) < data->buttonCount()) {
    press.action = data->buttonActionAtIndex(static_cast<std::size_t>(press.tag));
  }
  press.messageID = headerValue(kMessageIdKey);
  press.campaignID = headerValue(kCampaignIdKey);
  press.hasMessages = !responseValue_.empty();
  press.completionBlock = completionBlock_;
  press.delegate = [this, pressed = delegate_, turn = turns_.current()]() -> KesuInAppMessageDelegate* {
    return turn.isAlive() && delegate_ == pressed ? pressed : nullptr;
  };
  press.shouldOpenUrl = options_.shouldOpenUrl;
  callToAction_.perform(std::move(press));
}

// The host hears of it before: a dismissal that is not animated has left the screen when it returns.
void KesuInAppPresenter::dismissViewController(bool animated) {
  const std::shared_ptr<KesuPopupController> popup = popupController_;
  afterwards([this] { didPopoverClosed(); },
             [&] {
               if (popup != nullptr) {
                 popup->dismissPopupControllerAnimated(animated);
               }
             });
}

void KesuInAppPresenter::didPopoverClosed() {
  const bool wasUp = popupController_ != nullptr;
  const auto willDismiss = options_.willDismiss;
  tearDown();
  if (wasUp) {
    tell(willDismiss);
  }
}

void KesuInAppPresenter::tearDown() {
  turns_.begin();
  isInAppShown_ = false;
  model_.reset();
  textOverlapsImage_ = false;
  unreadMessageCount_ = 0;
  showIndex_ = 0;
  arrivedImageSize_ = {};
  image_ = nullptr;
  cell_ = nullptr;
  if (tableView_ != nullptr) {
    tableView_->forgetDataSource();
  }
  tableView_ = nullptr;
  bars_ = nullptr;
  if (popupController_ != nullptr) {  // It may be its own tap recogniser that closes it: it goes a turn later.
    popupController_->setDelegate(nullptr);
    services_.platform.mainLoop.post([popup = std::move(popupController_)] {});
  }
}

void KesuInAppPresenter::orientationChanged() {
  if (popupController_ != nullptr) {
    popupController_->orientationWillChange();
  }
}

}  // namespace kesu
