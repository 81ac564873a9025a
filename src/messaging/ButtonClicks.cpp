#include "messaging/ButtonClicks.h"

#include <utility>

#include "foundation/Objects.h"

namespace kesu {
namespace {

std::optional<std::string> textIn(const Dictionary& info, std::string_view key) {
  const std::string* text = info.findText(key);
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::int64_t integerIn(const Dictionary& info, std::string_view key) {
  const Value* value = info.find(key);
  return value != nullptr ? value->integerValue() : 0;
}

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
  status.messageID = textIn(info, "messageID");
  status.campaignID = textIn(info, "campaignID");
  status.title = textIn(info, "title");
  status.urlString = textIn(info, "urlString");
  if (info.contains("errorCode")) {
    status.error =
        KesuInAppError{static_cast<HttpError>(integerIn(info, "errorCode")),
                       static_cast<int>(integerIn(info, "errorStatus")), textIn(info, "errorText").value_or("")};
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
