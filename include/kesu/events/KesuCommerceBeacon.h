#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

namespace kesu {

/// Beacons: regions entered, left and bought in.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuCommerceBeacon {
 public:
  KesuCommerceBeacon() = delete;

  /// [KesuCommerceBeacon postEnteredRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:]
  /// Event "BeaconEnteredRegion". Keys: "iBeaconUUID", "iBeaconMajor", "iBeaconMinor", "uniqueRegionIdentifier"
  /// (object).
  static void postEnteredRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                                const Object& uniqueRegionIdentifier, const Attributes& attributes = {});

  /// [KesuCommerceBeacon postExitedRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withAttributes:]
  /// Event "BeaconExitedRegion". Keys: "iBeaconUUID", "iBeaconMajor", "iBeaconMinor", "uniqueRegionIdentifier"
  /// (object).
  static void postExitedRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                               const Object& uniqueRegionIdentifier, const Attributes& attributes = {});

  /// [KesuCommerceBeacon
  /// postTransactedInRegion:withBeaconMajor:withBeaconMinor:withUniqueRegionIdentifier:withProximity:withActionId:withAttributes:]
  /// Event "BeaconTransactedRegion". Keys: "iBeaconUUID", "iBeaconMajor", "iBeaconMinor", "uniqueRegionIdentifier",
  /// "proximity", "actionId" (object).
  static void postTransactedInRegion(const Object& iBeaconUUID, const Object& beaconMajor, const Object& beaconMinor,
                                     const Object& uniqueRegionIdentifier, const Object& proximity,
                                     const Object& actionId, const Attributes& attributes = {});
};

}  // namespace kesu
