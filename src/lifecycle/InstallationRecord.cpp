#include "lifecycle/InstallationRecord.h"

#include <optional>

#include "lifecycle/CommonColumns.h"
#include "records/RecordKeys.h"

namespace kesu {
namespace {

/// Names that people gave and identifiers of their devices leave the device as digests only.
std::optional<std::string> hashed(const std::optional<std::string>& text) {
  return text ? std::optional(hashStr(*text)) : std::nullopt;
}

}  // namespace

void addInstallationFacts(Dictionary& record, const std::string& instanceId2, KesuMetrics& metrics, Bundle& bundle) {
  record.set(k_KesuAppInstanceId2, instanceId2);
  setOrRemove(record, kVendorIdentifierKey, hashed(metrics.vendorIdentifier()));
  setOrRemove(record, kDeviceNameKey, hashed(metrics.deviceName()));
  setOrRemove(record, kApplicationNameKey, bundle.infoText("CFBundleDisplayName"));
  setOrRemove(record, kPackageKey, bundle.infoText("CFBundleIdentifier"));
  setOrRemove(record, k_DeviceProduct, metrics.product());
  record.set(k_CarrierName, metrics.carrierName());
  record.set(kScreenWidthKey, metrics.screenWidth());
  record.set(kScreenHeightKey, metrics.screenHeight());
  record.set(kMemoryKey, metrics.memorySize());
  setOrRemove(record, kProcessorsKey, metrics.numberProcessors());
  setOrRemove(record, kActiveProcessorsKey, metrics.numberActiveProcessors());
  record.set(kProcessorSpeedKey, KesuMetrics::nonNil(metrics.processorSpeed()));
  record.set(kBusSpeedKey, KesuMetrics::nonNil(metrics.processorBusSpeed()));
}

}  // namespace kesu
