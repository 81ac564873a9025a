#pragma once

#include <kesu/foundation/Value.h>
#include <kesu/platform/Bundle.h>

#include <optional>
#include <string>

namespace kesu {

/// Returns how the application was distributed: "App Store", "Ad hoc", "Enterprise", "Developer" or "Unknown", by the
/// profile "embedded.mobileprovision" in the bundle. Does not verify its signature. Any thread. [provisioningMode]
std::string provisioningMode(Bundle& bundle);

/// Returns false: no store installs applications here. [provisionedFromAppStore]
bool provisionedFromAppStore();

// Owed to hosts and to the agreed interface; no caller inside the library but provisioningMode().

/// Returns how the application was distributed, by the bytes of a profile. [releaseModeFromData:]
std::string releaseModeFromData(const std::optional<Data>& data);

/// Returns the profile's property list, cut out of the bytes by its text markers; nothing when the markers or the list
/// are broken. [parseDataIntoDictionary:]
std::optional<Value> parseDataIntoDictionary(const Data& data);

}  // namespace kesu
