#include "message_ui/KesuPopupController.h"

#include <kesu/platform/Platform.h>
#include <kesu/ui/Application.h>

#include <algorithm>
#include <utility>

#include "support/KesuPriorityLogger.h"
#include "uikit/Animator.h"
#include "uikit/GestureRecognizer.h"
#include "uikit/ViewDrawing.h"

namespace kesu {
namespace {

constexpr double kSlideSeconds = 0.3;
constexpr double kHeightSeconds = 0.1;    // Short: the views must have their places before the card moves.
constexpr double kRecenterSeconds = 0.5;  // Slow: what the user is reading moves.
constexpr double kDefaultCornerRadius = 5.0;
constexpr double kBorderWidth = 1.0;
constexpr Color kBackdropColor = Color::black().withAlpha(0.7);  // The application stays visible behind the card.

double slideSeconds(bool animated) {
  return animated ? kSlideSeconds : 0.0;
}

void setHeight(View& view, double height) {
  Rect frame = view.frame();
  frame.height = height;
  view.setFrame(frame);
}

// Kept: at every log threshold, and for touches too, those on the card among them.
void logRelease() {
  KESU_LOG(0, "Menu button released");
}

}  // namespace

KesuPopupController::KesuPopupController(ViewPtr contentView, ImagePtr snapshot, KesuPopoverDelegate* delegate)
    : KesuPopupController(std::vector<ViewPtr>{std::move(contentView)}, std::move(snapshot), delegate) {}

KesuPopupController::KesuPopupController(std::vector<ViewPtr> contentViews, ImagePtr snapshot,
                                         KesuPopoverDelegate* delegate)
    : views_(std::move(contentViews)), viewImage_(std::move(snapshot)) {
  setUpPopoverContent();
  delegate_ = delegate;
}

KesuPopupController::~KesuPopupController() {
  gesture_->setDelegate(nullptr);
  removeNotifications();
}

Window* KesuPopupController::applicationWindow() const {
  return Application::shared().keyWindow();
}

void KesuPopupController::setUpPopoverContent() {
  popupView_ = std::make_shared<View>();
  popupView_->setClipsToBounds(true);
  ViewDrawing::setComposited(*popupView_, true);  // It slides as one picture, instead of being drawn for each frame.
  theme_ = KesuPopupTheme::defaultTheme();
  theme_.popupStyle = 0;
  const Window* window = applicationWindow();
  contentView_ = std::make_shared<View>(window != nullptr ? window->bounds() : Rect{});
  contentView_->setBackgroundColor(kBackdropColor);
  contentView_->setModal(true);  // Presses do not reach the application behind it.
  gesture_ =
      std::make_shared<TapGestureRecognizer>([this, alive = std::weak_ptr(presentation_)](GestureRecognizer& made) {
        if (!alive.expired()) {  // The backdrop may outlive the controller while it slides out.
          handleBackgroundTapGesture(&made);
        }
      });
  gesture_->setAllowedPressTypes({RemoteButton::Menu});
  gesture_->setDelegate(this);
  GestureRecognizer::add(*contentView_, gesture_);
  contentView_->addSubview(popupView_);
  addPopupContents();
}

void KesuPopupController::addPopupContents() {
  for (const ViewPtr& view : views_) {
    popupView_->addSubview(view);
  }
}

void KesuPopupController::applyTheme() {
  // Kept: the presentation style follows the popup style, though nothing reads it.
  if (theme_.popupStyle == 2) {
    theme_.presentationStyle = 0;
  } else if (theme_.popupStyle == 0) {
    theme_.presentationStyle = 2;
  }
  popupView_->setCornerRadius(theme_.popupStyle == 1 ? theme_.cornerRadius : kDefaultCornerRadius);
  popupView_->setBackgroundColor(theme_.backgroundColor);
  popupView_->setBorder(kBorderWidth, Color::white());
}

void KesuPopupController::calculateVisibleContentSize() {
  double height = 0.0;
  double width = 0.0;
  for (const ViewPtr& view : popupView_->subviews()) {
    if (view->isHidden()) {
      continue;
    }
    const Size size = view->bounds().size();
    view->setFrame({0.0, height, size.width, size.height});
    height += size.height;
    width = std::max(width, size.width);
  }
  popupView_->setFrame({0.0, 0.0, width, height});
}

Point KesuPopupController::dockedCenter() const {
  const double shift = (screenInsets_.left - screenInsets_.right) * 0.5;
  return {contentView_->center().x + shift,
          contentView_->bounds().height - popupView_->bounds().height * 0.5 - screenInsets_.bottom};
}

// A whole card below the edge, so that nothing of it shows while it waits.
Point KesuPopupController::hiddenCenter() const {
  return {dockedCenter().x, contentView_->bounds().height + popupView_->bounds().height};
}

void KesuPopupController::presentPopupControllerAnimated(bool animated, Completion completion) {
  dismissAnimated_ = animated;
  ++presentation_->number;
  presentation_->isUp = true;
  applyTheme();
  calculateVisibleContentSize();
  popupView_->setCenter(hiddenCenter());
  if (Window* window = applicationWindow()) {
    window->addSubview(contentView_);
  }
  contentView_->setAlpha(0.0);
  animate(
      slideSeconds(animated),
      [this] {
        contentView_->setAlpha(1.0);
        popupView_->setCenter(dockedCenter());
      },
      [card = popupView_, completion = std::move(completion)](bool) {
        card->setUserInteractionEnabled(true);
        if (completion) {
          completion(true);
        }
      });
}

void KesuPopupController::dismissPopupControllerAnimated(bool animated, Completion completion) {
  const std::uint64_t number = ++presentation_->number;
  animate(
      slideSeconds(animated),
      [this] {
        contentView_->setAlpha(0.0);
        popupView_->setCenter(hiddenCenter());
      },
      [backdrop = contentView_, presentation = presentation_, number, removed = removed_,
       completion = std::move(completion)](bool) {
        if (presentation->number == number) {
          backdrop->removeFromSuperview();
          if (std::exchange(presentation->isUp, false) && removed) {
            removed();
          }
        }
        if (completion) {
          completion(true);
        }
      });
  removeNotifications();
}

void KesuPopupController::updatePopoverHeight(double height) {
  const ViewPtr first = popupView_->subviews().at(0);
  const ViewPtr second = popupView_->subviews().at(1);
  if (first->bounds().height == height) {
    return;
  }
  animate(kHeightSeconds, [&] { setHeight(*first, height); });
  animate(kHeightSeconds, [&] {
    Rect frame = second->frame();
    frame.y = first->bounds().height;
    second->setFrame(frame);
  });
  redock();
}

// On the next turn: by then the bars, too, have the size of the new message.
void KesuPopupController::redock() {
  Platform::current().mainLoop.post([this, weak = std::weak_ptr(presentation_), number = presentation_->number] {
    const auto presentation = weak.lock();
    if (presentation == nullptr || presentation->number != number) {
      return;  // Dismissed or presented again meanwhile: that has set the card's place.
    }
    const auto& stacked = popupView_->subviews();
    setHeight(*popupView_, stacked.at(0)->bounds().height + stacked.at(1)->bounds().height);
    animate(kRecenterSeconds, [this] {
      contentView_->setAlpha(1.0);
      popupView_->setCenter(dockedCenter());
    });
  });
}

void KesuPopupController::orientationWillChange() {
  animate(kSlideSeconds, [this] {
    const Window* window = applicationWindow();
    contentView_->setFrame(window != nullptr ? window->bounds() : Rect{});
    popupView_->setCenter(dockedCenter());
  });
}

// Nothing in a card can be edited, so there is no editing to end first.
void KesuPopupController::dismissForUser() {
  dismissPopupControllerAnimated(dismissAnimated_);
}

void KesuPopupController::handleBackgroundTapGesture(GestureRecognizer* recognizer) {
  if (recognizer != nullptr && recognizer->state() == GestureRecognizer::State::Ended) {
    logRelease();
  }
  if (!gesture_->allowedPressTypes().empty()) {
    dismissForUser();
  }
  if (theme_.shouldDismissOnBackgroundTouch) {
    dismissForUser();
    if (delegate_ != nullptr) {
      delegate_->didPopoverClosed();
    }
  }
}

bool KesuPopupController::shouldReceiveTouch(GestureRecognizer& /*recognizer*/, View& touched) {
  logRelease();
  return !popupView_->contains(touched);
}

}  // namespace kesu
