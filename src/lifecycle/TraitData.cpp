#include "lifecycle/TraitData.h"

#include <optional>
#include <utility>
#include <vector>

#include "lifecycle/CommonColumns.h"
#include "lifecycle/Provisioning.h"
#include "records/DefaultsKeys.h"
#include "records/RecordKeys.h"
#include "services/MessageKeys.h"

namespace kesu {
namespace {

/// Which optional blocks a type carries.
struct Blocks {
  bool repair = false;
  bool pushAndCarrier = false;
  bool locale = false;
  bool integrity = false;
  bool fullMark = false;
};

Blocks blocksOf(TraitType type) {
  switch (type) {
    case TraitType::Full:
      return {.repair = true, .pushAndCarrier = true, .locale = true, .integrity = true, .fullMark = true};
    case TraitType::PushAndCarrier:
      return {.pushAndCarrier = true};
    case TraitType::LocaleChanged:
      return {.locale = true};
    case TraitType::ExplicitActivation:
    case TraitType::Identifiers:
      return {};
    case TraitType::FirstLaunch:
      return {.repair = true, .pushAndCarrier = true, .locale = true, .integrity = true};
  }
  return {};
}

/// As a value: identifiers of a notification may be numbers, and stay what they were.
void copyDefault(Dictionary& record, std::string_view key, UserDefaults& defaults, std::string_view source) {
  if (auto value = defaults.get(source)) {
    record.set(key, std::move(*value));
  }
}

void addCarrier(Dictionary& record, UserDefaults& defaults, KesuMetrics& metrics) {
  copyDefault(record, k_KesuPushNotificationKey, defaults, k_DeviceTokenIdentifier);
  record.set(k_CarrierName, metrics.carrierName());
  record.set(k_CarrierIsoCountryCode, kNoCarrier);
  record.set(k_CarrierMccMnc, kNoCarrier);
}

Value orNull(std::string text) {
  return text.empty() ? Value(Null{}) : Value(std::move(text));
}

Value firstOrNull(const std::vector<std::string>& texts) {
  return texts.empty() ? Value(Null{}) : orNull(texts.front());
}

std::string joinedWithBlanks(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (joined.empty() ? "" : " ") + text;
  }
  return joined;
}

void addLocale(Dictionary& record, LocaleService& locale, Bundle& bundle) {
  const std::string identifier = locale.localeIdentifier();
  const std::vector<std::string> languages = locale.preferredLanguages();
  record.set(k_LocaleRegion, orNull(identifier.substr(0, identifier.find('@'))));
  record.set(k_LocaleCountry, orNull(locale.countryCode()));
  record.set(k_LocaleLanguage, firstOrNull(languages));
  record.set(k_AppLanguage, firstOrNull(bundle.preferredLocalizations()));
  record.set(k_LocalePreferredLanguage, orNull(joinedWithBlanks(languages)));
  record.set(k_LocaleCalendar, orNull(locale.calendarIdentifier()));
}

void addIntegrity(Dictionary& record, Bundle& bundle) {
  record.set(k_IsRooted, "0");  // No probe of device integrity applies to this platform.
  record.set(k_ProvisioningMode, provisioningMode(bundle));
  record.set(k_ProvisionedFromAppStore, provisionedFromAppStore() ? "1" : "0");
}

}  // namespace

void addTraitData(Dictionary& record, TraitType type, const std::string& instanceId2, Platform& platform,
                  KesuMetrics& metrics) {
  const Blocks blocks = blocksOf(type);
  copyDefault(record, kMessageIdKey, platform.defaults, k_PushMidKey);
  copyDefault(record, kCampaignIdKey, platform.defaults, k_PushCidKey);
  copyDefault(record, kPushIdentifierDefault, platform.defaults, kPushIdentifierDefault);
  setOrRemove(record, k_KesuAppInstanceId2, instanceId2.empty() ? std::nullopt : std::optional(instanceId2));
  if (blocks.repair) {
    record.set(k_RepairProcessing, "1");
  }
  if (blocks.pushAndCarrier) {
    addCarrier(record, platform.defaults, metrics);
  }
  if (blocks.locale) {
    addLocale(record, platform.locale, platform.bundle);
  }
  if (blocks.integrity) {
    addIntegrity(record, platform.bundle);
  }
  if (blocks.fullMark) {
    record.set(k_FullTrait, "1");
  }
}

}  // namespace kesu
