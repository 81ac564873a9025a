#pragma once

#include <kesu/Export.h>
#include <kesu/foundation/Value.h>

#include <cstdint>
#include <initializer_list>

namespace kesu {

/// A drone: checks, flights, pictures, videos, flying modes, safety settings.
/// <kesu/events/Catalogue.h> states what holds for every operation.
class KESU_API KesuDrone {
 public:
  KesuDrone() = delete;

  /// Posts event "PreFlightCheckCompleted": the checks before a flight were completed. Keys: "overallStatus",
  /// "storageStatus" (object); "droneBatteryChargePercent", "deviceBatteryChargePercent" (decimal);
  /// "calibrationStatus", "gpsStatus" (object). [KesuDrone
  /// postPreflightCheckCompleted:withStorageStatus:withDroneBattery:withTransmitterBattery:withCalibrationStatus:withGPSStatus:withAttributes:]
  static void postPreflightCheckCompleted(const Object& overallStatus, const Object& storageStatus,
                                          std::int64_t droneBattery, std::int64_t transmitterBattery,
                                          const Object& calibrationStatus, const Object& gpsStatus,
                                          const Attributes& attributes = {});

  /// Posts event "InFlightCheckCompleted": the checks during a flight were completed. Keys: "overallStatus",
  /// "rollStatus", "pitchStatus", "yawStatus", "throttleStatus", "trimmingSettings" (object).
  /// [KesuDrone postInflightCheckCompleted:withRoll:withPitch:withYaw:withThrottle:withTrim:withAttributes:]
  static void postInflightCheckCompleted(const Object& overallStatus, const Object& roll, const Object& pitch,
                                         const Object& yaw, const Object& throttle, const Object& trim,
                                         const Attributes& attributes = {});

  /// Posts event "DroneConnected": the drone was connected. No keys of its own. [KesuDrone postConnected:]
  static void postConnected(const Attributes& attributes = {});

  /// Posts event "DroneDisconnected": the drone was disconnected. Keys: "code" (object).
  /// [KesuDrone postDisconnected:withAttributes:]
  static void postDisconnected(const Object& code, const Attributes& attributes = {});

  /// Posts event "Airborne": the drone took off. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postAirborne:withAttributes:]
  static void postAirborne(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "DroneLanded": the drone landed. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postLanded:withAttributes:]
  static void postLanded(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FlightPathCreated": a flight path was created. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postFlightPathCreated:withAttributes:]
  static void postFlightPathCreated(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FlightPathUploaded": a flight path was uploaded. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postFlightPathUploaded:withAttributes:]
  static void postFlightPathUploaded(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FlightPathEdited": a flight path was edited. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postFlightPathEdited:withAttributes:]
  static void postFlightPathEdited(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FlightPathDeleted": a flight path was deleted. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postFlightPathDeleted:withAttributes:]
  static void postFlightPathDeleted(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FlightPathCompleted": a flight path was completed. Keys: "uniqueFlightPathId" (object).
  /// [KesuDrone postFlightPathCompleted:withAttributes:]
  static void postFlightPathCompleted(const Object& uniqueFlightPathId, const Attributes& attributes = {});

  /// Posts event "FirstPersonViewEnabled": the first-person view was enabled. Keys: "status" (object).
  /// [KesuDrone postFirstPersonViewEnabled:withAttributes:]
  static void postFirstPersonViewEnabled(const Object& status, const Attributes& attributes = {});

  /// Posts event "FirstPersonViewDisabled": the first-person view was disabled. Keys: "status" (object).
  /// [KesuDrone postFirstPersonViewDisabled:withAttributes:]
  static void postFirstPersonViewDisabled(const Object& status, const Attributes& attributes = {});

  /// Posts event "StartedAerialVideo": a video was started. Keys: "status" (object).
  /// [KesuDrone postStartedAerialVideo:withAttributes:]
  static void postStartedAerialVideo(const Object& status, const Attributes& attributes = {});

  /// Does the same with attributes in braces, also empty ones, which would fit both forms otherwise.
  static void postStartedAerialVideo(const Object& status, std::initializer_list<Attributes::Entry> attributes);

  /// Posts event "StartedAerialVideoAttr": a video of an identifier was started. Keys: "status", "videoIdentifer"
  /// (object). [KesuDrone postStartedAerialVideo:videoIdentifer:withAttributes:]
  static void postStartedAerialVideo(const Object& status, const Object& videoIdentifer,
                                     const Attributes& attributes = {});

  /// Posts event "StoppedAerialVideo": a video was stopped. Keys: "videoIdentifer", "secondsLength" (object).
  /// [KesuDrone postStoppedAerialVideo:withLength:withAttributes:]
  static void postStoppedAerialVideo(const Object& videoIdentifer, const Object& length,
                                     const Attributes& attributes = {});

  /// Posts event "TookAerialPicture": a picture was taken. Keys: "status" (object).
  /// [KesuDrone postTookAerialPicture:withAttributes:]
  static void postTookAerialPicture(const Object& status, const Attributes& attributes = {});

  /// Posts event "StartedAerialTimelapse": a series of pictures was started. Keys: "status" (object); "totalshots",
  /// "secondsBetweenShots" (decimal).
  /// [KesuDrone postStartedAerialTimelapse:totalShots:delayBetweenShots:withAttributes:]
  static void postStartedAerialTimelapse(const Object& status, std::int64_t totalShots, std::int64_t delayBetweenShots,
                                         const Attributes& attributes = {});

  /// Posts event "StoppedAerialTimelapse": a series of pictures was stopped. Keys: "status" (object).
  /// [KesuDrone postStoppedAerialTimelapse:withAttributes:]
  static void postStoppedAerialTimelapse(const Object& status, const Attributes& attributes = {});

  /// Posts event "RequestedReturnToBase": the drone was told to return to its base. No keys of its own.
  /// [KesuDrone postRequestedReturnToBase:]
  static void postRequestedReturnToBase(const Attributes& attributes = {});

  /// Posts event "FlyingMode": the flying mode became that of a helicopter. Keys: "mode" = "Helicopter".
  /// [KesuDrone postSwitchedToHelicopterFlyingMode:]
  static void postSwitchedToHelicopterFlyingMode(const Attributes& attributes = {});

  /// Posts event "FlyingMode": the flying mode became attitude. Keys: "mode" = "Attitude".
  /// [KesuDrone postSwitchedToAttitudeFlyingMode:]
  static void postSwitchedToAttitudeFlyingMode(const Attributes& attributes = {});

  /// Posts event "FlyingMode": the flying mode became GPS hold. Keys: "mode" = "GPSHold".
  /// [KesuDrone postSwitchedToGPSHoldFlyingMode:]
  static void postSwitchedToGPSHoldFlyingMode(const Attributes& attributes = {});

  /// Posts event "FlyingMode": the flying mode became one of the host's own. Keys: "mode" (decimal).
  /// [KesuDrone postSwitchedToCustomFlyingMode:withAttributes:]
  static void postSwitchedToCustomFlyingMode(std::int64_t mode, const Attributes& attributes = {});

  /// Posts event "SetMaxAltitude": the greatest altitude was set. Keys: "altitudeInMeters" (decimal).
  /// [KesuDrone postSetMaxAltitude:withAttributes:]
  static void postSetMaxAltitude(std::int64_t altitudeInMeters, const Attributes& attributes = {});

  /// Posts event "SetAutoReturnInSeconds": a return after that many seconds was set. Keys: "seconds" (decimal).
  /// [KesuDrone postSetAutoReturnInSeconds:withAttributes:]
  static void postSetAutoReturnInSeconds(std::int64_t seconds, const Attributes& attributes = {});

  /// Posts event "AutoReturnLowMemory": a return when memory runs low was set. Keys: "memoryLeftInKilobytes" (decimal).
  /// [KesuDrone postSetAutoReturnWhenLowMemory:withAttributes:]
  static void postSetAutoReturnWhenLowMemory(std::int64_t memoryLeftInKilobytes, const Attributes& attributes = {});

  /// Posts event "AutoReturnLowBattery": a return when the battery runs low was set. Keys: "batterylevelPercent"
  /// (decimal). [KesuDrone postSetAutoReturnWhenLowBattery:withAttributes:]
  static void postSetAutoReturnWhenLowBattery(std::int64_t batteryLevelPercent, const Attributes& attributes = {});
};

}  // namespace kesu
