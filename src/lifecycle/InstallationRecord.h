#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Bundle.h>

#include <string>

#include "device/KesuMetrics.h"

namespace kesu {

/// Adds what the installation record says of the application and the device: "kaid2" and the columns from "idv" to
/// "bspd". Facts that the device cannot tell are left out, unknown clock speeds become the null object. Pure but for
/// the questions to `metrics` and `bundle`.
void addInstallationFacts(Dictionary& record, const std::string& instanceId2, KesuMetrics& metrics, Bundle& bundle);

}  // namespace kesu
