#pragma once

#include <kesu/foundation/Value.h>

#include "device/KesuMetrics.h"

namespace kesu {

/// Adds the state of the device to a state change: battery, orientation, memory, network, and for a launch the time
/// since the device was started. Any thread.
void addDeviceState(Dictionary& record, char state, KesuMetrics& metrics);

}  // namespace kesu
