#include "lifecycle/RemoteNotifications.h"

#include <utility>

#include "foundation/Digest.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {

void RemoteNotifications::setRemoteNotificationDeviceToken(const Data& token) {
  if (!token.empty()) {
    sendDeviceTokenTraits(hexLower(token));
  }
}

void RemoteNotifications::sendDeviceTokenTraits(const std::string& token) {
  // Systems deliver the token at every launch; only a new one is worth a record.
  if (defaults_.text(k_DeviceTokenIdentifier) == token) {
    return;
  }
  background_.post([this, token] {
    Dictionary record;
    sender_.addCommonColumns(record, k_TableTraits);
    record.set(k_KesuPushNotificationKey, token);
    sender_.postAndSave(std::move(record));
    KESU_LOG_AT(3, "KesuManager", 1473, "%s and device token %s", "sendDeviceTokenTraits:", token.c_str());
    // Kept: remembered after the report, so that a call before it reports the token again.
    defaults_.set(k_DeviceTokenIdentifier, token);
    defaults_.synchronize();
  });
}

void RemoteNotifications::processReceivedRemoteNotification(const Object& identifier, const Dictionary& userInfo) {
  for (const auto& [key, target] : {std::pair{kMessageIdKey, k_PushMidKey}, std::pair{kCampaignIdKey, k_PushCidKey}}) {
    if (const Value* value = userInfo.find(key)) {
      defaults_.set(target, *value);
    }
  }
  const std::string* text = identifier ? identifier->text() : nullptr;
  if (text != nullptr && !text->empty()) {
    defaults_.set(kPushIdentifierDefault, *text);
  }
  defaults_.synchronize();
  sender_.saveTraits(TraitType::Full);
}

}  // namespace kesu
