#include <kesu/events/KesuDrone.h>

#include "events/catalogue/EventBuilder.h"

namespace kesu {
namespace {

void postFlight(std::string_view event, const Object& flightPath, const Attributes& attributes) {
  EventBuilder(event, attributes).object("uniqueFlightPathId", flightPath).post();
}

void postStatus(std::string_view event, const Object& status, const Attributes& attributes) {
  EventBuilder(event, attributes).object("status", status).post();
}

void postFlyingMode(std::string_view mode, const Attributes& attributes) {
  EventBuilder("FlyingMode", attributes).constant("mode", mode).post();
}

}  // namespace

void KesuDrone::postPreflightCheckCompleted(const Object& overallStatus, const Object& storageStatus,
                                            std::int64_t droneBattery, std::int64_t transmitterBattery,
                                            const Object& calibrationStatus, const Object& gpsStatus,
                                            const Attributes& attributes) {
  EventBuilder("PreFlightCheckCompleted", attributes)
      .object("overallStatus", overallStatus)
      .object("storageStatus", storageStatus)
      .decimal("droneBatteryChargePercent", droneBattery)
      .decimal("deviceBatteryChargePercent", transmitterBattery)
      .object("calibrationStatus", calibrationStatus)
      .object("gpsStatus", gpsStatus)
      .post();
}

void KesuDrone::postInflightCheckCompleted(const Object& overallStatus, const Object& roll, const Object& pitch,
                                           const Object& yaw, const Object& throttle, const Object& trim,
                                           const Attributes& attributes) {
  EventBuilder("InFlightCheckCompleted", attributes)
      .object("overallStatus", overallStatus)
      .object("rollStatus", roll)
      .object("pitchStatus", pitch)
      .object("yawStatus", yaw)
      .object("throttleStatus", throttle)
      .object("trimmingSettings", trim)
      .post();
}

void KesuDrone::postConnected(const Attributes& attributes) {
  EventBuilder("DroneConnected", attributes).post();
}

void KesuDrone::postDisconnected(const Object& code, const Attributes& attributes) {
  EventBuilder("DroneDisconnected", attributes).object("code", code).post();
}

void KesuDrone::postAirborne(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("Airborne", uniqueFlightPathId, attributes);  // Kept: without "Drone".
}

void KesuDrone::postLanded(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("DroneLanded", uniqueFlightPathId, attributes);
}

void KesuDrone::postFlightPathCreated(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("FlightPathCreated", uniqueFlightPathId, attributes);
}

void KesuDrone::postFlightPathUploaded(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("FlightPathUploaded", uniqueFlightPathId, attributes);
}

void KesuDrone::postFlightPathEdited(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("FlightPathEdited", uniqueFlightPathId, attributes);
}

void KesuDrone::postFlightPathDeleted(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("FlightPathDeleted", uniqueFlightPathId, attributes);
}

void KesuDrone::postFlightPathCompleted(const Object& uniqueFlightPathId, const Attributes& attributes) {
  postFlight("FlightPathCompleted", uniqueFlightPathId, attributes);
}

void KesuDrone::postFirstPersonViewEnabled(const Object& status, const Attributes& attributes) {
  postStatus("FirstPersonViewEnabled", status, attributes);
}

void KesuDrone::postFirstPersonViewDisabled(const Object& status, const Attributes& attributes) {
  postStatus("FirstPersonViewDisabled", status, attributes);
}

void KesuDrone::postStartedAerialVideo(const Object& status, const Attributes& attributes) {
  postStatus("StartedAerialVideo", status, attributes);
}

void KesuDrone::postStartedAerialVideo(const Object& status, std::initializer_list<Attributes::Entry> attributes) {
  postStartedAerialVideo(status, Attributes(attributes));
}

void KesuDrone::postStartedAerialVideo(const Object& status, const Object& videoIdentifer,
                                       const Attributes& attributes) {
  EventBuilder("StartedAerialVideoAttr", attributes)
      .object("status", status)
      .object("videoIdentifer", videoIdentifer)
      .post();
}

void KesuDrone::postStoppedAerialVideo(const Object& videoIdentifer, const Object& length,
                                       const Attributes& attributes) {
  EventBuilder("StoppedAerialVideo", attributes)
      .object("videoIdentifer", videoIdentifer)
      .object("secondsLength", length)
      .post();
}

void KesuDrone::postTookAerialPicture(const Object& status, const Attributes& attributes) {
  postStatus("TookAerialPicture", status, attributes);
}

void KesuDrone::postStartedAerialTimelapse(const Object& status, std::int64_t totalShots,
                                           std::int64_t delayBetweenShots, const Attributes& attributes) {
  EventBuilder("StartedAerialTimelapse", attributes)
      .object("status", status)
      .decimal("totalshots", totalShots)
      .decimal("secondsBetweenShots", delayBetweenShots)
      .post();
}

void KesuDrone::postStoppedAerialTimelapse(const Object& status, const Attributes& attributes) {
  postStatus("StoppedAerialTimelapse", status, attributes);
}

void KesuDrone::postRequestedReturnToBase(const Attributes& attributes) {
  EventBuilder("RequestedReturnToBase", attributes).post();
}

void KesuDrone::postSwitchedToHelicopterFlyingMode(const Attributes& attributes) {
  postFlyingMode("Helicopter", attributes);
}

void KesuDrone::postSwitchedToAttitudeFlyingMode(const Attributes& attributes) {
  postFlyingMode("Attitude", attributes);
}

void KesuDrone::postSwitchedToGPSHoldFlyingMode(const Attributes& attributes) {
  postFlyingMode("GPSHold", attributes);
}

void KesuDrone::postSwitchedToCustomFlyingMode(std::int64_t mode, const Attributes& attributes) {
  EventBuilder("FlyingMode", attributes).decimal("mode", mode).post();
}

void KesuDrone::postSetMaxAltitude(std::int64_t altitudeInMeters, const Attributes& attributes) {
  EventBuilder("SetMaxAltitude", attributes).decimal("altitudeInMeters", altitudeInMeters).post();
}

void KesuDrone::postSetAutoReturnInSeconds(std::int64_t seconds, const Attributes& attributes) {
  EventBuilder("SetAutoReturnInSeconds", attributes).decimal("seconds", seconds).post();
}

void KesuDrone::postSetAutoReturnWhenLowMemory(std::int64_t memoryLeftInKilobytes, const Attributes& attributes) {
  EventBuilder("AutoReturnLowMemory", attributes).decimal("memoryLeftInKilobytes", memoryLeftInKilobytes).post();
}

void KesuDrone::postSetAutoReturnWhenLowBattery(std::int64_t batteryLevelPercent, const Attributes& attributes) {
  EventBuilder("AutoReturnLowBattery", attributes).decimal("batterylevelPercent", batteryLevelPercent).post();
}

}  // namespace kesu
