#include "lifecycle/DeviceState.h"

#include <string>

#include "lifecycle/CommonColumns.h"
#include "records/RecordKeys.h"
#include "records/StateCodes.h"

namespace kesu {

void addDeviceState(Dictionary& record, char state, KesuMetrics& metrics) {
  record.set(k_BatteryLevel, metrics.batteryLevel());
  record.set(k_BatteryState, metrics.batteryState());
  record.set(k_Orientation, metrics.orientation());
  record.set(k_UserMEM, metrics.userMemorySize());
  record.set(k_Reachability, metrics.granularReachability());
  std::string bssid;
  std::string ssid;
  metrics.currentWiFi(bssid, ssid);
  if (!ssid.empty()) {
    record.set(k_CurrentWifiSSID, ssid);
  }
  if (!bssid.empty()) {
    record.set(k_CurrentWifiBSSID, bssid);
  }
  if (state == kStateLaunch) {  // It does not change within a run.
    setOrRemove(record, k_Uptime, metrics.uptime());
  }
}

}  // namespace kesu
