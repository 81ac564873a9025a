#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <initializer_list>

namespace kesu {

/// A drone: checks, flights, pictures, videos, flying modes, safety settings.
///
/// Any thread. Arguments and attributes are copied, and the call returns before anything is sent. A key of the
/// class's own replaces a host attribute of that name. Before Kesu::initialize every operation throws
/// InternalInconsistencyException and records nothing. <kesu/events/Catalogue.h> tells what the kinds of keys mean.
class KESU_API KesuDrone {
 public:
  KesuDrone() = delete;

  /// [KesuDrone
  /// postPreflightCheckCompleted:withStorageStatus:withDroneBattery:withTransmitterBattery:withCalibrationStatus:withGPSStatus:withAttributes:]
  /// Event "PreFlightCheckCompleted". Keys: "overallStatus", "storageStatus" (object); "droneBatteryChargePercent",
  /// "deviceBatteryChargePercent" (decimal); "calibrationStatus", "gpsStatus" (object).
  static void postPreflightCheckCompleted(const Object& overallStatus, const Object& storageStatus,
                                          std::int64_t droneBattery, std::int64_t transmitterBattery,
                                          const Object& calibrationStatus, const Object& gpsStatus,
                                          const Attributes& attributes = {});

  /// [KesuDrone postInflightCheckCompleted:withRoll:withPitch:withYaw:withThrottle:withTrim:withAttributes:]
  /// Event "InFlightCheckCompleted". Keys: "overallStatus", "rollStatus", "pitchStatus", "yawStatus",
  /// "throttleStatus", "trimmingSettings" (object).
  static void postInflightCheckCompleted(const Object& overallStatus, const Object& roll, const Object& pitch,
                                         const Object& yaw, const Object& throttle, const Object& trim,
                                         const Attributes& attributes = {});

  /// [KesuDrone postConnected:] Event "DroneConnected", no keys of its own.
  static void postConnected(const Attributes& attributes = {});

  /// [KesuDrone postDisconnected:withAttributes:] Event "DroneDisconnected".
  /// Keys: "code" (object).
  static void postDisconnected(const Object& code, const Attributes& attributes = {});

  /// [KesuDrone postAirborne:withAttributes:] Event "Airborne".
  /// Keys: "uniqueFlightPathId" (object).
  static void postAirborne(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postLanded:withAttributes:] Event "DroneLanded".
  /// Keys: "uniqueFlightPathId" (object).
  static void postLanded(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFlightPathCreated:withAttributes:] Event "FlightPathCreated".
  /// Keys: "uniqueFlightPathId" (object).
  static void postFlightPathCreated(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFlightPathUploaded:withAttributes:] Event "FlightPathUploaded".
  /// Keys: "uniqueFlightPathId" (object).
  static void postFlightPathUploaded(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFlightPathEdited:withAttributes:] Event "FlightPathEdited".
  /// Keys: "uniqueFlightPathId" (object).
  static void postFlightPathEdited(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFlightPathDeleted:withAttributes:] Event "FlightPathDeleted".
  /// Keys: "uniqueFlightPathId" (object).
  static void postFlightPathDeleted(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFlightPathCompleted:withAttributes:] Event "FlightPathCompleted".
  /// Keys: "uniqueFlightPathId" (object).
  static void postFlightPathCompleted(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// [KesuDrone postFirstPersonViewEnabled:withAttributes:] Event "FirstPersonViewEnabled".
  /// Keys: "status" (object).
  static void postFirstPersonViewEnabled(const Object& status, const Attributes& attributes = {});

  /// [KesuDrone postFirstPersonViewDisabled:withAttributes:] Event "FirstPersonViewDisabled".
  /// Keys: "status" (object).
  static void postFirstPersonViewDisabled(const Object& status, const Attributes& attributes = {});

  /// [KesuDrone postStartedAerialVideo:withAttributes:] Event "StartedAerialVideo".
  /// Keys: "status" (object).
  static void postStartedAerialVideo(const Object& status, const Attributes& attributes = {});

  /// The same with attributes in braces, empty ones too, which would fit either form.
  static void postStartedAerialVideo(const Object& status, std::initializer_list<Attributes::Entry> attributes);

  /// [KesuDrone postStartedAerialVideo:videoIdentifer:withAttributes:] Event "StartedAerialVideoAttr".
  /// Keys: "status", "videoIdentifer" (object).
  static void postStartedAerialVideo(const Object& status, const Object& videoIdentifer,
                                     const Attributes& attributes = {});

  /// [KesuDrone postStoppedAerialVideo:withLength:withAttributes:] Event "StoppedAerialVideo".
  /// Keys: "videoIdentifer", "secondsLength" (object).
  static void postStoppedAerialVideo(const Object& videoIdentifer, const Object& length,
                                     const Attributes& attributes = {});

  /// [KesuDrone postTookAerialPicture:withAttributes:] Event "TookAerialPicture".
  /// Keys: "status" (object).
  static void postTookAerialPicture(const Object& status, const Attributes& attributes = {});

  /// [KesuDrone postStartedAerialTimelapse:totalShots:delayBetweenShots:withAttributes:]
  /// Event "StartedAerialTimelapse". Keys: "status" (object); "totalshots", "secondsBetweenShots" (decimal).
  static void postStartedAerialTimelapse(const Object& status, std::int64_t totalShots, std::int64_t delayBetweenShots,
                                         const Attributes& attributes = {});

  /// [KesuDrone postStoppedAerialTimelapse:withAttributes:] Event "StoppedAerialTimelapse".
  /// Keys: "status" (object).
  static void postStoppedAerialTimelapse(const Object& status, const Attributes& attributes = {});

  /// [KesuDrone postRequestedReturnToBase:] Event "RequestedReturnToBase", no keys of its own.
  static void postRequestedReturnToBase(const Attributes& attributes = {});

  /// [KesuDrone postSwitchedToHelicopterFlyingMode:] Event "FlyingMode".
  /// Keys: "mode" = "Helicopter".
  static void postSwitchedToHelicopterFlyingMode(const Attributes& attributes = {});

  /// [KesuDrone postSwitchedToAttitudeFlyingMode:] Event "FlyingMode".
  /// Keys: "mode" = "Attitude".
  static void postSwitchedToAttitudeFlyingMode(const Attributes& attributes = {});

  /// [KesuDrone postSwitchedToGPSHoldFlyingMode:] Event "FlyingMode".
  /// Keys: "mode" = "GPSHold".
  static void postSwitchedToGPSHoldFlyingMode(const Attributes& attributes = {});

  /// [KesuDrone postSwitchedToCustomFlyingMode:withAttributes:] Event "FlyingMode".
  /// Keys: "mode" (decimal).
  static void postSwitchedToCustomFlyingMode(std::int64_t mode, const Attributes& attributes = {});

  /// [KesuDrone postSetMaxAltitude:withAttributes:] Event "SetMaxAltitude".
  /// Keys: "altitudeInMeters" (decimal).
  static void postSetMaxAltitude(std::int64_t altitudeInMeters, const Attributes& attributes = {});

  /// [KesuDrone postSetAutoReturnInSeconds:withAttributes:] Event "SetAutoReturnInSeconds".
  /// Keys: "seconds" (decimal).
  static void postSetAutoReturnInSeconds(std::int64_t seconds, const Attributes& attributes = {});

  /// [KesuDrone postSetAutoReturnWhenLowMemory:withAttributes:] Event "AutoReturnLowMemory".
  /// Keys: "memoryLeftInKilobytes" (decimal).
  static void postSetAutoReturnWhenLowMemory(std::int64_t memoryLeftInKilobytes, const Attributes& attributes = {});

  /// [KesuDrone postSetAutoReturnWhenLowBattery:withAttributes:] Event "AutoReturnLowBattery".
  /// Keys: "batterylevelPercent" (decimal).
  static void postSetAutoReturnWhenLowBattery(std::int64_t batteryLevelPercent, const Attributes& attributes = {});
};

}  // namespace kesu
