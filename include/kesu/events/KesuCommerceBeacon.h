#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Beacons: regions entered, left and bought in.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuCommerceBeacon {
 public:
  KesuCommerceBeacon() = delete;

  /// Posts event "BeaconEnteredRegion": a beacon's region was entered. Keys: "iBeaconUUID", "iBeaconMajor",
  /// "iBeaconMinor", "uniqueRegionIdentifier" (object).
  /// [KesuCommerceBeacon postEnteredRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:]
  static void postEnteredRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                                const Object& uniqueRegionIdentifier, const Attributes& attributes = {});

  /// Posts event "BeaconExitedRegion": a beacon's region was left. Keys: "iBeaconUUID", "iBeaconMajor", "iBeaconMinor",
  /// "uniqueRegionIdentifier" (object).
  /// [KesuCommerceBeacon postExitedRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:]
  static void postExitedRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                               const Object& uniqueRegionIdentifier, const Attributes& attributes = {});

  /// Posts event "BeaconTransactedRegion": something was bought in a beacon's region. Keys: "iBeaconUUID",
  /// "iBeaconMajor", "iBeaconMinor", "uniqueRegionIdentifier", "proximity", "actionId" (object). [KesuCommerceBeacon
  /// postTransactedInRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withProximity:withActionId:withAttributes:]
  static void postTransactedInRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                                     const Object& uniqueRegionIdentifier, const Object& proximity,
                                     const Object& actionId, const Attributes& attributes = {});
};

}  // namespace kesu
