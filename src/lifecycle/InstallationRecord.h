#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Bundle.h>

#include <string>

#include "device/KesuMetrics.h"

namespace kesu {

/// Adds the facts of the installation record about application and device: "kaid2" and the columns from "idv" to
/// "bspd". Leaves out unknown facts; unknown clock speeds become the null object. Any thread.
void addInstallationFacts(Dictionary& record, const std::string& instanceId2, KesuMetrics& metrics, Bundle& bundle);

}  // namespace kesu
