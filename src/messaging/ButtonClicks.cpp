#include "messaging/ButtonClicks.h"

#include <utility>

#include "foundation/Objects.h"

namespace kesu {
namespace {

Dictionary userInfoOf(const KesuInAppStatus& status) {
  Dictionary info{{"buttonIndex", status.buttonIndex}, {"status", status.status}};
  setUnlessNil(info, "messageID", status.messageID);
  setUnlessNil(info, "campaignID", status.campaignID);
  setUnlessNil(info, "title", status.title);
  setUnlessNil(info, "urlString", status.urlString);
  if (status.error) {
    info.set("errorCode", static_cast<int>(status.error->code));
    info.set("errorStatus", status.error->httpStatus);
    info.set("errorText", status.error->text);
  }
  return info;
}

KesuInAppStatus statusOf(const Dictionary& info) {
  KesuInAppStatus status;
  status.buttonIndex = integerIn(info, "buttonIndex");
  status.status = integerIn(info, "status");
  status.messageID = textOf(valueIn(info, "messageID"));
  status.campaignID = textOf(valueIn(info, "campaignID"));
  status.title = textOf(valueIn(info, "title"));
  status.urlString = textOf(valueIn(info, "urlString"));
  if (info.contains("errorCode")) {
    status.error = KesuInAppError{static_cast<HttpError>(integerIn(info, "errorCode")),
                                  static_cast<int>(integerIn(info, "errorStatus")), textIn(info, "errorText")};
  }
  return status;
}

}  // namespace

void postButtonClick(NotificationCenter& notifications, const KesuInAppStatus& status) {
  notifications.post(kInAppMessageButtonClickedNotification, &status, userInfoOf(status));
}

NotificationCenter::Token observeButtonClicks(NotificationCenter& notifications,
                                              std::function<void(const KesuInAppStatus&)> handler) {
  return notifications.addObserver(
      kInAppMessageButtonClickedNotification, nullptr,
      [handler = std::move(handler)](const Notification& notification) { handler(statusOf(notification.userInfo)); });
}

}  // namespace kesu
