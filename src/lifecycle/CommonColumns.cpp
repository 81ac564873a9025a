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

void CommonColumns::addCommonColumnsToDictionary(Dictionary& record, std::string_view destination) {
  const AppInstance::Identity identity = instance_.identity();
  if (identity.id.empty()) {
    return;
  }
  record.reserve(record.size() + kMostColumns);
  const double now = platform_.clock.now();
  record.set(k_destinationKeyInDictionary, destination);
  record.set(k_KesuAppKey, identity.appKey);
  record.set(k_FullVersionKeyForBody, fullVersionText());
  record.set(k_KesuAppInstanceId, identity.id);
  record.set(k_AgentCollectionEpoch, milliseconds(now));
  record.set(k_AgentSentEpoch, "");  // Keeps its place; the poster sets it when it sends.
  record.set(k_CommonMsgId, newBase64Uuid(platform_.random));
  if (destination == k_TableTraits) {
    setOrRemove(record, k_DeviceProduct, metrics_.product());
  }
  if (auto identifier = userIdentifier(platform_.defaults)) {
    record.set(kUserIdentifierKey, std::move(*identifier));
  }
  record.set(k_LocalDeviceTime, metrics_.formattedDate(now));
  addVersions(record);
  addPosition(record);
}

void CommonColumns::addVersions(Dictionary& record) {
  setOrRemove(record, k_CFBundleVersion, platform_.bundle.infoText("CFBundleVersion"));
  setOrRemove(record, k_CFBundleShortVersionString, platform_.bundle.infoText("CFBundleShortVersionString"));
  setOrRemove(record, k_OsVersion, metrics_.systemVersion());
}

void CommonColumns::addPosition(Dictionary& record) {
  if (const auto position = location_.fetched()) {
    record.set(kLongitudeKey, shortestReal(position->longitude));
    record.set(kLatitudeKey, shortestReal(position->latitude));
    record.set(kAltitudeKey, shortestReal(position->altitude));
  }
}

}  // namespace kesu
