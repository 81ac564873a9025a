#include "lifecycle/RemoteNotifications.h"

#include <utility>

#include "foundation/Digest.h"
#include "foundation/Json.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "services/MessageKeys.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

// What JSON cannot represent would make every later trait record unsendable.
bool isSendable(const Value& value) {
  std::string unused;
  return writeJson(value, unused) == JsonStatus::Ok;
}

}  // namespace

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
  sender_.postBehindColumns({{std::string(k_KesuPushNotificationKey), token}}, k_TableTraits);
  background_.post([this, token] {
    KESU_LOG_AT(3, "KesuManager", 1473, "%s and device token %s", "sendDeviceTokenTraits:", token.c_str());
    // Kept: remembered after the report, so that a call before it reports the token again.
    defaults_.set(k_DeviceTokenIdentifier, token);
    defaults_.synchronize();
  });
}

void RemoteNotifications::processReceivedRemoteNotification(const Object& identifier, const Dictionary& userInfo) {
  for (const auto& [key, target] : {std::pair{kMessageIdKey, k_PushMidKey}, std::pair{kCampaignIdKey, k_PushCidKey}}) {
    const Value* value = userInfo.find(key);
    if (value != nullptr && isSendable(*value)) {
      defaults_.set(target, *value);
    }
  }
  const std::string* text = identifier ? identifier->text() : nullptr;
  if (text != nullptr && !text->empty() && isSendable(*text)) {
    defaults_.set(kPushIdentifierDefault, *text);
  }
  defaults_.synchronize();
  sender_.saveTraits(TraitType::Full);
}

}  // namespace kesu
