#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/BackgroundQueue.h>
#include <kesu/platform/UserDefaults.h>

#include <string>

#include "lifecycle/RecordSender.h"

namespace kesu {

/// Reports device tokens and received push notifications. Any thread.
class RemoteNotifications {
 public:
  RemoteNotifications(UserDefaults& defaults, BackgroundQueue& background, RecordSender& sender)
      : defaults_(defaults), background_(background), sender_(sender) {}

  /// Reports a token on the background queue. Ignores an empty one and the one reported last.
  void setRemoteNotificationDeviceToken(const Data& token);

  /// Keeps the identifiers of a notification, which full traits carry from now on, and posts full traits synchronously.
  /// Missing and empty identifiers leave those of an earlier notification in place.
  void processReceivedRemoteNotification(const Object& identifier, const Dictionary& userInfo);

 private:
  void sendDeviceTokenTraits(const std::string& token);

  UserDefaults& defaults_;
  BackgroundQueue& background_;
  RecordSender& sender_;
};

}  // namespace kesu
