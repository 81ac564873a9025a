#include "lifecycle/StateChanges.h"

#include <utility>

#include "records/Destinations.h"
#include "records/RecordKeys.h"
#include "records/StateCodes.h"
#include "support/KesuPriorityLogger.h"

namespace kesu {
namespace {

std::string_view detailKey(char state) {
  switch (state) {
    case kStateLaunch:
      return k_LaunchDetail;
    case kStateTerminate:
      return k_TerminatedFrom;
    default:
      return k_StateDetail;
  }
}

}  // namespace

ScreenKey StateChanges::screenFor(char state, const std::optional<std::string>& detail) {
  if (state != kStateLaunch && detail) {
    // Kept: a termination looks for a screen called "from foreground", so that the visible one gets no entry.
    return {*detail, ""};
  }
  return topScreen_().value_or(ScreenKey{"Unknown", ""});
}

StateChanges::Change StateChanges::tracked(char state, const std::optional<std::string>& detail,
                                           const ScreenKey& screen) {
  Change change = {state, detail, {}};
  flow_.screenFlowHandler(state, screen, change.flows);
  return change;
}

void StateChanges::stateChangeEventAppLevel(char state, const std::optional<std::string>& detail) {
  const Change change = tracked(state, detail, screenFor(state, detail));
  if (state == kStateTerminate) {
    executePostMethod(change);
  } else {
    background_.post([this, change] { executePostMethod(change); });
  }
}

void StateChanges::screenChanged(char state, const ScreenKey& screen) {
  stateChangeEvent(tracked(state, screen.prefix, screen));
}

void StateChanges::executePostMethod(const Change& change) {
  stateChangeEvent(change);
  Dictionary flags;
  reports_.activations.activationForLR(flags, change.state);
  reports_.activations.activationsForUniqueDays(flags, change.state);
  // Last: any flag that is already due makes this the report to which the next periods are compared.
  reports_.variants.calculateVariantsForDMWQ(flags);
  sender_.postActivation(std::move(flags));
}

void StateChanges::stateChangeEvent(const Change& change) {
  if (instance_.identity().id.empty()) {  // Kept: a change before the initialisation is posted, without context.
    KESU_LOG_AT(3, "KesuManager", 1316, "self.kesuAppInstanceId is nil Init");
  }
  Dictionary record;
  Dictionary traits;
  sender_.addCommonColumns(record, k_TableStates);
  for (const auto& [key, value] : change.flows) {
    record.set(key, value);
  }
  if (endsSession(change.state)) {
    reports_.usage.fillInTraitsForAggregateAndActivations(traits);
  }
  addDetail(record, change);
  addDeviceState(record, change.state);
  sender_.post(std::move(record));
  sender_.postActivation(std::move(traits));  // Behind the change that closed the session which they sum up.
}

void StateChanges::addDetail(Dictionary& record, const Change& change) {
  record.set(k_NewState, std::string(1, change.state));
  if (change.detail) {
    record.set(detailKey(change.state), *change.detail);
  }
}

void StateChanges::addDeviceState(Dictionary& record, char state) {
  record.set(k_BatteryLevel, metrics_.batteryLevel());
  record.set(k_BatteryState, metrics_.batteryState());
  record.set(k_Orientation, metrics_.orientation());
  record.set(k_UserMEM, metrics_.userMemorySize());
  record.set(k_Reachability, metrics_.granularReachability());
  std::string bssid;
  std::string ssid;
  metrics_.currentWiFi(bssid, ssid);
  if (!ssid.empty()) {
    record.set(k_CurrentWifiSSID, ssid);
  }
  if (!bssid.empty()) {
    record.set(k_CurrentWifiBSSID, bssid);
  }
  if (state == kStateLaunch) {  // It does not change within a run.
    setOrRemove(record, k_Uptime, metrics_.uptime());
  }
}

}  // namespace kesu
