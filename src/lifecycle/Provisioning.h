#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Bundle.h>

#include <optional>
#include <string>

namespace kesu {

/// How the application was distributed: "App Store", "Ad hoc", "Enterprise", "Developer" or "Unknown", read from the
/// profile "embedded.mobileprovision" in the bundle. Its signature is not verified. Any thread.
std::string provisioningMode(Bundle& bundle);

/// The same for the bytes of a profile.
std::string releaseModeFromData(const std::optional<Data>& data);

/// The profile's property list, cut out of the bytes by its text markers; nothing when the markers or the list are
/// broken.
std::optional<Value> parseDataIntoDictionary(const Data& data);

/// Always false: no store installs applications here.
bool provisionedFromAppStore();

}  // namespace kesu
