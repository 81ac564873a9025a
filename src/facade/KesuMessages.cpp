#include <kesu/Kesu.h>
#include <kesu/foundation/Exception.h>
#include <kesu/message_ui/KesuInAppMessageDelegate.h>
#include <kesu/message_ui/KesuInAppOptions.h>
#include <kesu/records/Constants.h>
#include <kesu/ui/View.h>
#include <kesu/ui/ViewController.h>

#include <memory>
#include <string>
#include <utility>

#include "facade/Wiring.h"
#include "message_ui/UnreadBadge.h"

namespace kesu {
namespace {

KesuInAppPresenter& initializedPresenter() {
  if (!Kesu::isSDKInitialized()) {
    throw InternalInconsistencyException(std::string(k_KesuAppKeyMissingException));
  }
  return wiring().presenter;
}

void show(ViewController* controller, KesuInAppMessageType type, const KesuInAppPresenter::Colors& colors,
          Kesu::InAppHandler handler) {
  KesuInAppPresenter& presenter = initializedPresenter();
  // A host that has destroyed its window took the popup with it, which must not block later shows.
  if (presenter.isInAppShown() && !presenter.hasLostItsWindow()) {
    return;
  }
  presenter.setColors(colors);
  presenter.setCallbacks(std::move(handler), dynamic_cast<KesuInAppMessageDelegate*>(controller));
  presenter.presentWithController(controller, type);
}

}  // namespace

void Kesu::showInAppNotificationUI(ViewController* controller, KesuInAppMessageType displayMessages,
                                   std::optional<Color> msgNavBarButtonsTextColor,
                                   std::optional<Color> msgNavBarButtonsBgColor, std::optional<Color> msgNavBarBgColor,
                                   std::optional<Color> msgNavBarCounterTextColor) {
  show(controller, displayMessages,
       {msgNavBarButtonsTextColor, msgNavBarButtonsBgColor, msgNavBarBgColor, msgNavBarCounterTextColor}, {});
}

void Kesu::showUnreadInAppNotificationUI(ViewController* controller) {
  showInAppNotificationUI(controller, KesuInAppMessageType::Unread, Color::blueColor(), Color::white(), Color::white(),
                          Color::blueColor());
}

void Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                     std::optional<Color> navigationTextColor, InAppHandler handler) {
  show(nullptr, displayMessages, {navigationTextColor, {}, {}, {}}, std::move(handler));
}

void Kesu::showInAppNotificationUIForDisplayMessages(KesuInAppMessageType displayMessages,
                                                     std::optional<Color> msgNavBarButtonsTextColor,
                                                     std::optional<Color> msgNavBarButtonsBgColor,
                                                     std::optional<Color> msgNavBarBgColor,
                                                     std::optional<Color> msgNavBarCounterTextColor,
                                                     InAppHandler handler) {
  show(nullptr, displayMessages,
       {msgNavBarButtonsTextColor, msgNavBarButtonsBgColor, msgNavBarBgColor, msgNavBarCounterTextColor},
       std::move(handler));
}

void Kesu::showUnreadInAppNotificationUIWithCompletionHandler(InAppHandler handler) {
  showInAppNotificationUIForDisplayMessages(KesuInAppMessageType::Unread, Color::white(), std::move(handler));
}

void Kesu::dismissInAppNotificationUI(bool animated) {
  initializedPresenter().dismissViewController(animated);
}

void Kesu::addBadge(View* view) {
  if (view == nullptr) {
    return;
  }
  countNewUnFetched([weak = view->weak_from_this()](std::int64_t count) {
    if (const ViewPtr alive = weak.lock()) {
      addUnreadBadge(*alive, count);
    }
  });
  wiring().presenter.loadFonts();  // Ahead of the reply, so that the badge need not wait for them.
}

void Kesu::setInAppOptions(KesuInAppOptions options) {
  wiring().presenter.setOptions(std::move(options));
}

}  // namespace kesu
