#include "lifecycle/CommonColumns.h"

#include <utility>

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

void setOrRemove(Dictionary& record, std::string_view key, std::optional<std::string> text) {
  if (text) {
    record.set(key, std::move(*text));
  } else {
    record.remove(key);
  }
}

CommonColumns::Origin CommonColumns::ownOrigin() {
  AppInstance::Identity identity = instance_.identity();
  return {.appKey = std::move(identity.appKey),
          .id = std::move(identity.id),
          .id2 = std::move(identity.id2),
          .bundleVersion = platform_.bundle.infoText("CFBundleVersion"),
          .shortVersion = platform_.bundle.infoText("CFBundleShortVersionString"),
          .systemVersion = metrics_.systemVersion()};
}

CommonColumns::Origin CommonColumns::originIn(const Dictionary& context) {
  const auto text = [&context](std::string_view key) {
    const std::string* found = context.findText(key);
    return found != nullptr ? std::optional(*found) : std::nullopt;
  };
  return {.appKey = text(k_KesuAppKey),
          .id = text(k_KesuAppInstanceId),
          .id2 = text(k_KesuAppInstanceId2),
          .bundleVersion = text(k_CFBundleVersion),
          .shortVersion = text(k_CFBundleShortVersionString),
          .systemVersion = text(k_OsVersion)};
}

Dictionary CommonColumns::context() {
  Origin own = ownOrigin();
  Dictionary context;
  setOrRemove(context, k_KesuAppKey, std::move(own.appKey));
  setOrRemove(context, k_KesuAppInstanceId, std::move(own.id));
  setOrRemove(context, k_KesuAppInstanceId2, std::move(own.id2));
  setOrRemove(context, k_CFBundleVersion, std::move(own.bundleVersion));
  setOrRemove(context, k_CFBundleShortVersionString, std::move(own.shortVersion));
  setOrRemove(context, k_OsVersion, std::move(own.systemVersion));
  return context;
}

void CommonColumns::addCommonColumnsToDictionary(Dictionary& record, const PendingRecord& pending,
                                                 const Dictionary* context) {
  if (!pending.hasContext) {
    return;
  }
  Origin origin = context == nullptr ? ownOrigin() : originIn(*context);
  record.reserve(record.size() + kMostColumns);
  record.set(k_destinationKeyInDictionary, std::string(1, pending.destination));
  setOrRemove(record, k_KesuAppKey, std::move(origin.appKey));
  record.set(k_FullVersionKeyForBody, fullVersionText());
  setOrRemove(record, k_KesuAppInstanceId, std::move(origin.id));
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
  setOrRemove(record, k_CFBundleVersion, std::move(origin.bundleVersion));
  setOrRemove(record, k_CFBundleShortVersionString, std::move(origin.shortVersion));
  setOrRemove(record, k_OsVersion, std::move(origin.systemVersion));
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
