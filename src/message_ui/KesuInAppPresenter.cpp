#include "message_ui/KesuInAppPresenter.h"

#include <kesu/ui/Application.h>

#include <utility>

#include "drawing/TextLayout.h"
#include "foundation/Afterwards.h"
#include "foundation/Objects.h"
#include "message_ui/MessagePaging.h"
#include "message_ui/SensibleOptions.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

constexpr std::int64_t kStatusOtherMessage = 3;  // Hosts know it; a refused URL has the same number.

KesuInAppPresenter* sharedPresenter = nullptr;

}  // namespace

KesuInAppPresenter::KesuInAppPresenter(const Services& services)
    : platform_(services.platform),
      session_(services.inbox, services.platform),
      picture_(services.platform, services.loader, services.cache),
      callToAction_(services.platform, services.post, services.metrics) {
  sharedPresenter = this;
}

KesuInAppPresenter::~KesuInAppPresenter() {
  sharedPresenter = nullptr;
  if (popup_ != nullptr) {
    popup_->controller()->contentView().removeFromSuperview();
  }
}

KesuInAppPresenter* KesuInAppPresenter::sharedInstance() {
  return sharedPresenter;
}

KesuInAppMessageDelegate::~KesuInAppMessageDelegate() {
  if (sharedPresenter != nullptr) {
    sharedPresenter->forgetDelegate(this);
  }
}

void KesuInAppPresenter::setCallbacks(CompletionBlock block, KesuInAppMessageDelegate* delegate) {
  completionBlock_ = std::move(block);
  delegate_ = delegate;
}

void KesuInAppPresenter::setOptions(KesuInAppOptions options) {
  options_ = sensibleOptions(std::move(options));
  session_.setFilter(options_.shouldShowMessage);
}

void KesuInAppPresenter::forgetDelegate(const KesuInAppMessageDelegate* delegate) {
  if (delegate_ == delegate) {
    delegate_ = nullptr;
  }
}

// A copy is called: the host may set other options inside.
void KesuInAppPresenter::call(const std::function<void()>& hook) {
  if (const auto copy = hook) {
    copy();
  }
}

void KesuInAppPresenter::presentWithController(ViewController* controller, KesuInAppMessageType type) {
  if (popup_ != nullptr) {
    dismissViewController(false);
  }
  rootViewController_ = controller;
  looks_ = {options_.screenInsets, options_.textScale, colors_.buttonTextColor, colors_.messageNavigationBarColor};
  loadFonts();  // While the service is answering.
  session_.open(type, [this] { showPopover(); });
}

void KesuInAppPresenter::loadFonts() {
  if (!areFontsReady()) {
    platform_.imageWorker.post([] { prepareFonts(); });
  }
}

void KesuInAppPresenter::showPopover() {
  if (!session_.survives(options_.willPresent)) {
    return;
  }
  if (Application::shared().keyWindow() == nullptr) {
    KESU_LOG(2, "There is no key window to show messages in: make a kesu::Overlay first.");
  }
  popup_ = std::make_shared<MessagePopup>(
      content(), looks_,
      MessagePopup::Actions{[this](Button& button) { inAppButtonClicked(button); },
                            [this](Button& arrow) { changeTemplate(arrow); },
                            [this](SwipeDirection direction) { swipeGestureHandle(direction); }},
      *this);
  // Called after the popup object was destroyed, by the card that has slid out: only the presenter must still exist.
  popup_->controller()->setRemovalHandler([this, shown = session_.generation()] {
    if (shown.isAlive()) {
      call(options_.didDismiss);
    }
  });
  popup_->present([this, shown = std::weak_ptr(popup_)] {
    if (!shown.expired()) {
      call(options_.didPresent);
    }
  });
  loadPicture();
}

MessageContent KesuInAppPresenter::content() const {
  return {session_.model(), session_.index(), session_.headers().size()};
}

void KesuInAppPresenter::loadPicture() {
  if (popup_->lacksPicture()) {
    picture_.load(*content().templateData(), [this](const ImagePtr& shown) { popup_->showPicture(shown); });
  }
}

// All that is needed later is copied now: by then the popup may show something else.
void KesuInAppPresenter::inAppButtonClicked(const Button& button) {
  const MessageContent shown = content();
  const InAppTemplateData* data = shown.templateData();
  ButtonPress press;
  press.tag = button.tag();
  press.title = button.title();
  if (data != nullptr && press.tag >= 0 && static_cast<std::size_t>(press.tag) < data->buttonCount()) {
    press.action = data->buttonActionAtIndex(static_cast<std::size_t>(press.tag));
  }
  press.messageID = session_.headerValue(kMessageIdKey);
  press.campaignID = session_.headerValue(kCampaignIdKey);
  press.hasMessages = shown.count > 0;
  press.completionBlock = completionBlock_;
  press.delegate = [this, pressed = delegate_, asked = session_.generation()]() -> KesuInAppMessageDelegate* {
    return asked.isAlive() && delegate_ == pressed ? pressed : nullptr;
  };
  press.shouldOpenUrl = options_.shouldOpenUrl;
  callToAction_.perform(std::move(press));
}

void KesuInAppPresenter::swipeGestureHandle(SwipeDirection direction) {
  page(direction == SwipeDirection::Left ? kNextTag : kPreviousTag);
}

void KesuInAppPresenter::page(std::int64_t tag) {
  if (popup_ == nullptr || !session_.page(tag, [this] { didPage(); })) {
    return;
  }
  picture_.drop();  // At once: a late picture must not fade in after the user has paged on.
  KesuInAppStatus status;
  status.buttonIndex = tag;
  status.messageID = textOf(session_.headerValue(kMessageIdKey));
  status.campaignID = textOf(session_.headerValue(kCampaignIdKey));
  status.status = kStatusOtherMessage;
  paged_.push_back(std::move(status));
}

void KesuInAppPresenter::didPage() {
  popup_->show(content(), paged_.back().buttonIndex);
  loadPicture();
  reportPaging();
}

// Each step, though only the last message of several quick ones was shown: a receipt was sent for each.
void KesuInAppPresenter::reportPaging() {
  if (paged_.empty()) {  // At the end, or closed by the host meanwhile.
    return;
  }
  const KesuInAppStatus step = std::move(paged_.front());
  paged_.erase(paged_.begin());
  afterwards(
      [&] {
        if (const CompletionBlock block = completionBlock_) {
          block(step);
        }
      },
      [this] { reportPaging(); });
}

// The host is called first: a dismissal that is not animated has left the screen when it returns.
void KesuInAppPresenter::dismissViewController(bool animated) {
  const std::shared_ptr<KesuPopupController> popup = popup_ != nullptr ? popup_->controller() : nullptr;
  afterwards([this] { didPopoverClosed(); },
             [&] {
               if (popup != nullptr) {
                 popup->dismissPopupControllerAnimated(animated);
               }
             });
}

void KesuInAppPresenter::didPopoverClosed() {
  const bool wasUp = popup_ != nullptr;
  const auto willDismiss = options_.willDismiss;
  close();  // First: the host may present again inside its function.
  if (wasUp) {
    call(willDismiss);
  }
}

void KesuInAppPresenter::close() {
  session_.close();
  picture_.drop();
  paged_.clear();
  if (popup_ != nullptr) {  // The controller's own tap recogniser may be closing it: it is destroyed one turn later.
    platform_.mainLoop.post([controller = popup_->controller()] {});
    popup_ = nullptr;
  }
}

bool KesuInAppPresenter::hasLostItsWindow() const {
  return popup_ != nullptr && popup_->controller()->contentView().superview() == nullptr;
}

void KesuInAppPresenter::orientationChanged() {
  if (popup_ != nullptr) {
    popup_->controller()->orientationWillChange();
  }
}

}  // namespace kesu
