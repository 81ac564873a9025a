#include "lifecycle/CommonColumns.h"

#include <string>

#include "foundation/NumberText.h"
#include "records/DefaultsKeys.h"
#include "records/Destinations.h"
#include "records/MessageIdentifier.h"
#include "records/RecordKeys.h"
#include "records/Versions.h"

namespace kesu {
namespace {

constexpr std::size_t kMostColumns = 16;  // All below: one allocation per record instead of several.

/// The host's user identifier, when one is set.
std::optional<Value> userIdentifier(UserDefaults& defaults) {
  const auto identity = defaults.get(kIdentityKey);
  const Dictionary* entries = identity ? identity->dictionary() : nullptr;
  const Value* identifier = entries != nullptr ? entries->find(kAppSpecificUserId) : nullptr;
  return identifier != nullptr ? std::optional(*identifier) : std::nullopt;
}

}  // namespace

void setOrRemove(Dictionary& record, std::string_view key, const std::optional<std::string>& text) {
  if (text) {
    record.set(key, *text);
  } else {
    record.remove(key);
  }
}

Dictionary CommonColumns::context() {
  const AppInstance::Identity identity = instance_.identity();
  Dictionary context = {{std::string(k_KesuAppKey), identity.appKey},
                        {std::string(k_KesuAppInstanceId), identity.id},
                        {std::string(k_KesuAppInstanceId2), identity.id2}};
  setOrRemove(context, k_CFBundleVersion, platform_.bundle.infoText("CFBundleVersion"));
  setOrRemove(context, k_CFBundleShortVersionString, platform_.bundle.infoText("CFBundleShortVersionString"));
  setOrRemove(context, k_OsVersion, metrics_.systemVersion());
  return context;
}

void CommonColumns::addCommonColumnsToDictionary(Dictionary& record, const PendingRecord& pending,
                                                 const Dictionary* context) {
  if (!pending.hasContext) {
    return;
  }
  const Dictionary own = context == nullptr ? this->context() : Dictionary();
  const Dictionary& origin = context == nullptr ? own : *context;
  const auto copy = [&](std::string_view key) {
    const Value* value = origin.find(key);
    if (value != nullptr) {
      record.set(key, *value);
    } else {
      record.remove(key);
    }
  };
  record.reserve(record.size() + kMostColumns);
  record.set(k_destinationKeyInDictionary, std::string(1, pending.destination));
  copy(k_KesuAppKey);
  record.set(k_FullVersionKeyForBody, fullVersionText());
  copy(k_KesuAppInstanceId);
  record.set(k_AgentCollectionEpoch, milliseconds(pending.moment));
  record.set(k_AgentSentEpoch, "");  // Keeps its place; the poster sets it when it sends.
  record.set(k_CommonMsgId, base64Uuid(pending.identifier));
  if (pending.destination == k_TableTraits.front()) {
    setOrRemove(record, k_DeviceProduct, metrics_.product());
  }
  if (auto identifier = userIdentifier(platform_.defaults)) {
    record.set(kUserIdentifierKey, std::move(*identifier));
  }
  record.set(k_LocalDeviceTime, metrics_.formattedDate(pending.moment));
  copy(k_CFBundleVersion);
  copy(k_CFBundleShortVersionString);
  copy(k_OsVersion);
  addPosition(record);
}

void CommonColumns::addPosition(Dictionary& record) {
  if (const auto position = location_.fetched()) {
    record.set(kLongitudeKey, shortestReal(position->longitude));
    record.set(kLatitudeKey, shortestReal(position->latitude));
    record.set(kAltitudeKey, shortestReal(position->altitude));
  }
}

}  // namespace kesu
