#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/UserDefaults.h>

#include <string>

#include "lifecycle/RecordSender.h"

namespace kesu {

/// Reports device tokens and received notifications. Any thread.
class RemoteNotifications {
 public:
  RemoteNotifications(UserDefaults& defaults, BackgroundQueue& background, RecordSender& sender)
      : defaults_(defaults), background_(background), sender_(sender) {}

  /// Reports a new token. The one reported last is not reported again.
  void setRemoteNotificationDeviceToken(const Data& token);

  /// Keeps the identifiers of a notification, which full traits carry from now on, and refreshes the traits at once.
  /// What the notification lacks leaves the identifiers of an earlier one in place, and so does an empty `identifier`.
  void processReceivedRemoteNotification(const Object& identifier, const Dictionary& userInfo);

 private:
  void sendDeviceTokenTraits(const std::string& token);

  UserDefaults& defaults_;
  BackgroundQueue& background_;
  RecordSender& sender_;
};

}  // namespace kesu
